// SPDX-License-Identifier: MIT
#include "tests/tooladapter/rules/words.h"
#include "tooladapter/rules/extractionrules.h"
#include "tooladapter/rules/refusal.h"

#include <QTest>
#include <QVector>

namespace
{

/// A picture and audio streams that begin at \a starts [s], in this order.
tooladapter::Source beginningAt(const QVector<double> &starts)
{
    tooladapter::Source source;
    for (const double start : starts) {
        tooladapter::Stream stream;
        stream.kind =
            source.streams.empty() ? tooladapter::Stream::Kind::Picture : tooladapter::Stream::Kind::Audio;
        stream.start = start;
        source.streams.push_back(stream);
    }
    return source;
}

} // namespace

class TestExtractionRules : public QObject
{
    Q_OBJECT

private slots:
    void theLimitHoldsForEveryFile_data();
    void theLimitHoldsForEveryFile();
    void everyFileBeginsWhereTheSourceDoes_data();
    void everyFileBeginsWhereTheSourceDoes();
    void aFileWithoutAudioIsRefused();
    void soundThatBeginsTooLateIsRefused();
};

void TestExtractionRules::theLimitHoldsForEveryFile_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("corrected");
    QTest::newRow("one stream, the seek goes") << "-y -guess_layout_max 0 -ss 0 -i in.mov -t 3 -map 0:1 a.wav"
                                               << "-y -guess_layout_max 0 -t 3 -i in.mov -map 0:1 a.wav";
    QTest::newRow("three streams, one limit before the source")
        << "-y -guess_layout_max 0 -ss 0 -i in.mov -t 3 -map 0:1 a.wav -map 0:2 b.wav -map 0:3 c.wav"
        << "-y -guess_layout_max 0 -t 3 -i in.mov -map 0:1 a.wav -map 0:2 b.wav -map 0:3 c.wav";
    QTest::newRow("a short file is taken whole") << "-y -guess_layout_max 0 -i in.mov -map 0:1 a.wav"
                                                 << "-y -guess_layout_max 0 -i in.mov -map 0:1 a.wav";
}

void TestExtractionRules::theLimitHoldsForEveryFile()
{
    QFETCH(QString, given);
    QFETCH(QString, corrected);
    const auto list = tooladapter::parseArguments(wordsOf(given));
    QVERIFY(list.has_value());
    QCOMPARE(textOf(tooladapter::renderArguments(tooladapter::rewriteExtraction(*list, {}))), corrected);
}

void TestExtractionRules::everyFileBeginsWhereTheSourceDoes_data()
{
    QTest::addColumn<QVector<double>>("starts"); // [s] of the picture and two audio streams
    QTest::addColumn<QString>("corrected");
    QTest::newRow("together") << QVector<double>{1.4, 1.4, 1.4} << "-map 0:1 a.wav -map 0:2 b.wav";
    QTest::newRow("both late") << QVector<double>{0, 0.4, 0.094667}
                               << "-map 0:1 -filter:a adelay=400.000:all=1 a.wav "
                                  "-map 0:2 -filter:a adelay=94.667:all=1 b.wav";
    QTest::newRow("the second after the first")
        << QVector<double>{1.5, 1.4, 1.45} << "-map 0:1 a.wav -map 0:2 -filter:a adelay=50.000:all=1 b.wav";
    QTest::newRow("by less than matters") << QVector<double>{0, 0.0009, 0} << "-map 0:1 a.wav -map 0:2 b.wav";
    QTest::newRow("ten seconds") << QVector<double>{0, 10, 0}
                                 << "-map 0:1 -filter:a adelay=10000.000:all=1 a.wav -map 0:2 b.wav";
    QTest::newRow("what begins later than that is left out")
        << QVector<double>{0, 0, 10.1} << "-map 0:1 a.wav";
}

void TestExtractionRules::everyFileBeginsWhereTheSourceDoes()
{
    QFETCH(QVector<double>, starts);
    QFETCH(QString, corrected);
    const auto list = tooladapter::parseArguments(
        wordsOf("-y -guess_layout_max 0 -ss 0 -i in.mov -t 3 -map 0:1 a.wav -map 0:2 b.wav"));
    QVERIFY(list.has_value());
    QCOMPARE(textOf(tooladapter::renderArguments(tooladapter::rewriteExtraction(*list, beginningAt(starts)))),
             "-y -guess_layout_max 0 -t 3 -i in.mov " + corrected);
}

void TestExtractionRules::soundThatBeginsTooLateIsRefused()
{
    const auto list = tooladapter::parseArguments(wordsOf("-y -guess_layout_max 0 -i in.mov -map 0:1 a.wav"));
    QVERIFY(list.has_value());
    QVERIFY_EXCEPTION_THROWN(tooladapter::rewriteExtraction(*list, beginningAt({0, 60})),
                             tooladapter::Refusal);
}

void TestExtractionRules::aFileWithoutAudioIsRefused()
{
    for (const char *words :
         {"-y -guess_layout_max 0 -ss 0 -i in.mov -t 3", "-y -guess_layout_max 0 -i in.mov"}) {
        const auto list = tooladapter::parseArguments(wordsOf(words));
        QVERIFY(list.has_value());
        QVERIFY_EXCEPTION_THROWN(tooladapter::rewriteExtraction(*list, {}), tooladapter::Refusal);
    }
}

QTEST_APPLESS_MAIN(TestExtractionRules)
#include "tst_extractionrules.moc"

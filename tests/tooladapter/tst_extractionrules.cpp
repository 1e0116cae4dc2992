// SPDX-License-Identifier: MIT
#include "tests/tooladapter/words.h"
#include "tooladapter/extractionrules.h"
#include "tooladapter/refusal.h"

#include <QTest>

class TestExtractionRules : public QObject
{
    Q_OBJECT

private slots:
    void theLimitHoldsForEveryFile_data();
    void theLimitHoldsForEveryFile();
    void aFileWithoutAudioIsRefused();
};

void TestExtractionRules::theLimitHoldsForEveryFile_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("mended");
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
    QFETCH(QString, mended);
    const auto list = tooladapter::parseArguments(wordsOf(given));
    QVERIFY(list.has_value());
    QCOMPARE(textOf(tooladapter::renderArguments(tooladapter::rewriteExtraction(*list))), mended);
}

void TestExtractionRules::aFileWithoutAudioIsRefused()
{
    for (const char *words :
         {"-y -guess_layout_max 0 -ss 0 -i in.mov -t 3", "-y -guess_layout_max 0 -i in.mov"}) {
        const auto list = tooladapter::parseArguments(wordsOf(words));
        QVERIFY(list.has_value());
        QVERIFY_EXCEPTION_THROWN(tooladapter::rewriteExtraction(*list), tooladapter::Refusal);
    }
}

QTEST_APPLESS_MAIN(TestExtractionRules)
#include "tst_extractionrules.moc"

// SPDX-License-Identifier: MIT
#include "ffmpeg/toolarguments.h"
#include "testkit/fixtures/row.h"

#include <QDir>
#include <QTest>

#include <limits>

class TestToolArguments : public QObject
{
    Q_OBJECT

private slots:
    void theProbeAsksForFormatAndStreamsAsJson();
    void extractionStopsAfterThreeSeconds_data();
    void extractionStopsAfterThreeSeconds();
    void everyAudioStreamBecomesAFileOfItsOwn_data();
    void everyAudioStreamBecomesAFileOfItsOwn();
    void extractedFilesAreNamedAfterFileStreamAndRow_data();
    void extractedFilesAreNamedAfterFileStreamAndRow();
};

void TestToolArguments::theProbeAsksForFormatAndStreamsAsJson()
{
    const QStringList expected{"-v",           "quiet",         "-print_format",      "json",
                               "-show_format", "-show_streams", "/day 1/100% A%1.MOV"};
    QCOMPARE(toolarguments::probe("/day 1/100% A%1.MOV"), expected);
}

void TestToolArguments::extractionStopsAfterThreeSeconds_data()
{
    QTest::addColumn<double>("duration"); // [s]
    QTest::addColumn<QStringList>("input");

    const QStringList whole{"-i", "/in.mov"};
    const QStringList cut{"-ss", "0", "-i", "/in.mov", "-t", "3"};
    row("nothing known of the duration", 0.0, whole);
    row("2.9 s is taken whole", 2.9, whole);
    row("2.999 s is taken whole", 2.999, whole);
    row("3.0 s is cut", 3.0, cut);
    row("an hour is cut", 3600.0, cut);
    row("a nonsense duration is cut", 1e300, cut);
    row("no number is taken whole", std::numeric_limits<double>::quiet_NaN(), whole);
}

void TestToolArguments::extractionStopsAfterThreeSeconds()
{
    QFETCH(double, duration);
    QFETCH(QStringList, input);

    FileData file;
    file.absoluteFilePath = "/in.mov";
    file.duration = duration;
    QCOMPARE(toolarguments::audioExtraction(file, "/tmp/x"),
             (QStringList{"-y", "-guess_layout_max", "0"} + input));
}

void TestToolArguments::everyAudioStreamBecomesAFileOfItsOwn_data()
{
    QTest::addColumn<QByteArray>("streamMap");
    QTest::addColumn<QStringList>("outputs");

    const QString target = QStringLiteral("/t") + QDir::separator();
    row("no audio", QByteArray(), QStringList());
    row("streams 1 and 2 of row 4", QByteArray("\1\2"),
        QStringList{"-map", "0:1", target + "clip_1_4.wav", "-map", "0:2", target + "clip_2_4.wav"});
    row("stream 0, as in WAV files", QByteArray("\0", 1),
        QStringList{"-map", "0:0", target + "clip_0_4.wav"});
    row("more streams than a signed byte counts", QByteArray("\x80\xFF"),
        QStringList{"-map", "0:128", target + "clip_128_4.wav", "-map", "0:255", target + "clip_255_4.wav"});
}

void TestToolArguments::everyAudioStreamBecomesAFileOfItsOwn()
{
    QFETCH(QByteArray, streamMap);
    QFETCH(QStringList, outputs);

    FileData file;
    file.absoluteFilePath = "/media/clip.mov";
    file.fileName = "clip.mov";
    file.rowNumber = 4;
    file.duration = 10.0;
    file.audioStreamMap = streamMap;
    const QStringList head{"-y", "-guess_layout_max", "0", "-ss", "0", "-i", "/media/clip.mov", "-t", "3"};
    QCOMPARE(toolarguments::audioExtraction(file, "/t"), head + outputs);
}

void TestToolArguments::extractedFilesAreNamedAfterFileStreamAndRow_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("expected");

    row("up to the first dot", "A001.take1.wav", "A001_7_12.wav");
    row("without a dot", "A001", "A001_7_12.wav");
    row("numbers and underscores of its own", "A_1_2.wav", "A_1_2_7_12.wav");
    row("percent signs", "take %2 %%.mov", "take %2 %%_7_12.wav");
    row("leading dash", "-y.mov", "-y_7_12.wav");
    row("unicode", QString::fromUtf8("Aufnahme \u00e4\U0001F3AC.mov"),
        QString::fromUtf8("Aufnahme \u00e4\U0001F3AC_7_12.wav"));
    const QString long240(240, 'x'); // leaves room for one character of four bytes
    row("too long: only whole characters are left", long240 + QString::fromUtf8("\U0001F3AC\U0001F3AC.mov"),
        long240 + QString::fromUtf8("\U0001F3AC_7_12.wav"));
}

void TestToolArguments::extractedFilesAreNamedAfterFileStreamAndRow()
{
    QFETCH(QString, fileName);
    QFETCH(QString, expected);

    FileData file;
    file.fileName = fileName;
    file.rowNumber = 12;
    QCOMPARE(toolarguments::extractedPath(file, "/100%1", 7),
             "/100%1" + QString(QDir::separator()) + expected);
}

QTEST_APPLESS_MAIN(TestToolArguments)
#include "tst_toolarguments.moc"

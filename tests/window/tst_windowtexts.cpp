// SPDX-License-Identifier: MIT
#include "app/windowtexts.h"

#include <QTest>

namespace
{

QString heading()
{
    return "Export finished.\nErrors occured with the folliwing files:";
}

QJsonObject audio(int index, const char *layout, int channels)
{
    QJsonObject stream{{"index", index}, {"codec_name", "pcm_s24le"}, {"channels", channels}};
    if (*layout)
        stream.insert("channel_layout", layout);
    return stream;
}

} // namespace

class TestWindowTexts : public QObject
{
    Q_OBJECT

private slots:
    void failedFilesStandFourALine_data();
    void failedFilesStandFourALine();
    void streamsAreListed_data();
    void streamsAreListed();
    void theAboutBoxShowsVersionAndWebPage();
    void missingToolsAreNamedWithTheirRemedy_data();
    void missingToolsAreNamedWithTheirRemedy();
};

void TestWindowTexts::failedFilesStandFourALine_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("text");
    QTest::newRow("no name: the heading loses its last two characters")
        << QStringList{} << heading().chopped(2);
    QTest::newRow("one") << QStringList{"a.mov"} << heading() + "\na.mov";
    QTest::newRow("four") << QStringList{"a", "b", "c", "d"} << heading() + "\na, b, c, d";
    QTest::newRow("five") << QStringList{"a", "b", "c", "d", "e"} << heading() + "\na, b, c, d, \ne";
    QTest::newRow("nine") << QStringList{"1", "2", "3", "4", "5", "6", "7", "8", "9"}
                          << heading() + "\n1, 2, 3, 4, \n5, 6, 7, 8, \n9";
    QTest::newRow("percent signs") << QStringList{"100% %1.mov", "%2"} << heading() + "\n100% %1.mov, %2";
}

void TestWindowTexts::failedFilesStandFourALine()
{
    QFETCH(QStringList, names);
    QTEST(windowtexts::failedExports(names), "text");
}

void TestWindowTexts::streamsAreListed_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<QStringList>("lines");
    FileData file;
    QTest::newRow("nothing known") << file << QStringList{" Streams:"};

    file.suffix = "mov";
    file.mainStream = {{"index", 0}, {"codec_name", "h264"}, {"width", 1920}, {"height", 1080}};
    file.audioStreams = {audio(1, "stereo", 2), audio(2, "", 4)};
    QTest::newRow("picture and two sound streams") << file << QStringList{" Streams:",
                                                                          "   0: video (h264)",
                                                                          "     size: 1920x1080",
                                                                          "   1: audio (pcm_s24le)",
                                                                          "     layout: stereo",
                                                                          "     channels: 2",
                                                                          "   2: audio (pcm_s24le)",
                                                                          "     channels: 4"};
    file.suffix = "MXF";
    QTest::newRow("MXF records no channels") << file << QStringList{" Streams:",
                                                                    "   0: video (h264)",
                                                                    "     size: 1920x1080",
                                                                    "   1: audio (pcm_s24le)",
                                                                    "     layout: stereo",
                                                                    "   2: audio (pcm_s24le)"};
    FileData sound;
    sound.suffix = "wav";
    sound.audioStreams = {audio(0, "", 1)};
    QTest::newRow("sound only") << sound
                                << QStringList{" Streams:", "   0: audio (pcm_s24le)", "     channels: 1"};
    FileData odd;
    odd.suffix = "mov";
    odd.mainStream = {{"codec_name", "h264"}};
    odd.audioStreams = {QJsonObject{}};
    QTest::newRow("a picture without index is left out, missing keys are empty")
        << odd << QStringList{" Streams:", "   0: audio ()", "     channels: 0"};
}

void TestWindowTexts::streamsAreListed()
{
    QFETCH(FileData, file);
    QTEST(windowtexts::streamLines(file), "lines");
}

void TestWindowTexts::theAboutBoxShowsVersionAndWebPage()
{
    const QString text = windowtexts::about();
    const QString page = text.section('\'', 3, 3);
    QVERIFY(page.startsWith("http"));
    QCOMPARE(text, "<p style='margin-right:5em;'>Ostrel Timecode Tool V1.00<br>Webpage: <a href='" + page +
                       "'>" + page + "</a><br></p>");
}

void TestWindowTexts::missingToolsAreNamedWithTheirRemedy_data()
{
    QTest::addColumn<QStringList>("programs");
    QTest::addColumn<QStringList>("remedies");
    const QString package("Install the package \"ffmpeg\" of your system.");
    const QString again("Install this application again, or put the missing files next to it.");
    QTest::newRow("tools of the system") << QStringList{"ffprobe", "ffmpeg"} << QStringList{package};
    QTest::newRow("our own") << QStringList{"LTCReader.exe"} << QStringList{again};
    QTest::newRow("both") << QStringList{"ffmpeg", "LTCReader.exe"} << QStringList{package, again};
}

void TestWindowTexts::missingToolsAreNamedWithTheirRemedy()
{
    QFETCH(QStringList, programs);
    QFETCH(QStringList, remedies);
    QCOMPARE(windowtexts::missingTools(programs), "These tools were not found:\n" + programs.join(", ") +
                                                      "\n\n" + remedies.join('\n') +
                                                      "\n\nFiles cannot be read or exported without them.");
}

QTEST_APPLESS_MAIN(TestWindowTexts)
#include "tst_windowtexts.moc"

// SPDX-License-Identifier: MIT
#include "filelist/celltexts.h"

#include <QTest>

#include <limits>

class TestCellTexts : public QObject
{
    Q_OBJECT

private slots:
    void durationsShowWholeSeconds_data();
    void durationsShowWholeSeconds();
    void timecodesShowRateAndChannel_data();
    void timecodesShowRateAndChannel();
    void linkedTimecodesSaySo();
    void toolTipsShowWhatTheReaderKnows();
    void linkedToolTipsNameTheSource();
    void aFailedReadingSaysWhatIsKept();
};

void TestCellTexts::durationsShowWholeSeconds_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0.0 << "00:00:00";
    QTest::newRow("59.5 s rounds up to the even minute") << 59.5 << "00:01:00";
    QTest::newRow("58.5 s rounds down to the even second") << 58.5 << "00:00:58";
    QTest::newRow("0.5 s rounds down") << 0.5 << "00:00:00";
    QTest::newRow("1.5 s rounds up") << 1.5 << "00:00:02";
    QTest::newRow("59.499 s") << 59.499 << "00:00:59";
    QTest::newRow("one second short of an hour") << 3599.0 << "00:59:59";
    QTest::newRow("an hour") << 3600.0 << "01:00:00";
    QTest::newRow("99:59:59") << 359999.0 << "99:59:59";
    QTest::newRow("100 hours take three digits") << 360000.0 << "100:00:00";
    QTest::newRow("endless") << std::numeric_limits<double>::infinity() << "00:00:00";
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << "00:00:00";
    QTest::newRow("beyond all counting") << 1e300 << "00:00:00";
}

void TestCellTexts::durationsShowWholeSeconds()
{
    QFETCH(double, seconds);
    QTEST(celltexts::duration(seconds), "text");
}

void TestCellTexts::timecodesShowRateAndChannel_data()
{
    QTest::addColumn<QJsonObject>("result");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *timecode, bool dropFrame, bool ntsc, double rate,
                        int channel, const char *text) {
        QTest::newRow(name) << QJsonObject{{"Timecode", timecode},
                                           {"DropFrame", dropFrame},
                                           {"NTSC", ntsc},
                                           {"FrameRateFound", rate},
                                           {"ChannelFound", channel}}
                            << text;
    };
    row("25", "10:00:00:00", false, false, 25.0, 0, "10:00:00:00@25.00 on ch. 1");
    row("drop-frame keeps both blanks", "01:00:00;00", true, true, 30.0, 1, "01:00:00;00@29.97 DF  on ch. 2");
    row("29.97 non-drop", "01:00:00:00", false, true, 30.0, 0, "01:00:00:00@29.97 on ch. 1");
    row("23.976", "01:00:00:00", false, true, 24.0, 2, "01:00:00:00@23.98 on ch. 3");
    row("24", "01:00:00:00", false, false, 24.0, 7, "01:00:00:00@24.00 on ch. 8");
    row("30", "01:00:00:00", false, false, 30.0, 0, "01:00:00:00@30.00 on ch. 1");
    row("drop-frame counts only with NTSC", "01:00:00:00", true, false, 30.0, 0,
        "01:00:00:00@30.00 on ch. 1");
    QTest::newRow("an empty object") << QJsonObject{} << "@0.00 on ch. 1";
}

void TestCellTexts::timecodesShowRateAndChannel()
{
    QFETCH(QJsonObject, result);
    QTEST(celltexts::audioTimecode(result), "text");
}

void TestCellTexts::linkedTimecodesSaySo()
{
    QCOMPARE(celltexts::linkedTimecode("10:00:00:00"), QString("10:00:00:00@(linked)"));
}

void TestCellTexts::toolTipsShowWhatTheReaderKnows()
{
    FileData file;
    file.audioStreamIndex = 2;
    file.audioTCResult = {{"DropFrame", true},    {"NTSC", true},
                          {"FrameRateFound", 30}, {"FrameRateBaseFound", 30},
                          {"ChannelFound", 1},    {"SamplesSinceMidnight", 4147204147.0}};
    QCOMPARE(celltexts::audioTimecodeToolTip(file),
             QString("Frame rate: 29.970 fps\nDrop-frame: yes\nStream: 2\nChannel: 2\n"
                     "Samples since midnight: 4147204147"));
}

void TestCellTexts::linkedToolTipsNameTheSource()
{
    const QJsonObject result{{"FrameRateFound", 25}, {"ChannelFound", 0}, {"SamplesSinceMidnight", 48000}};
    QCOMPARE(celltexts::linkedTimecodeToolTip(result, "T001_mix.wav"),
             QString("Linked to: T001_mix.wav\nFrame rate: 25.00 fps\nDrop-frame: no\nChannel: 1\n"
                     "Samples since midnight: 48000"));
}

void TestCellTexts::aFailedReadingSaysWhatIsKept()
{
    QCOMPARE(celltexts::keptTimecodeToolTip("10:00:00:00"), QString("kept for export: 10:00:00:00"));
}

QTEST_APPLESS_MAIN(TestCellTexts)
#include "tst_celltexts.moc"

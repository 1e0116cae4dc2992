// SPDX-License-Identifier: MIT
#include "batch/laterwindows.h"

#include <QJsonArray>
#include <QTest>

using laterwindows::Readings;

/// Timecode that begins late: the tools' arguments, and the way back to the first sample.
class TestLaterWindows : public QObject
{
    Q_OBJECT

private slots:
    void theWindowsCoverTheFile_data();
    void theWindowsCoverTheFile();
    void theReaderSaysWhatIsWrongWithLabels_data();
    void theReaderSaysWhatIsWrongWithLabels();
    void eachStreamOfAWindowIsExtracted();
    void exactWindowsAreCountedInSamples();
    void timecodeIsCountedBack_data();
    void timecodeIsCountedBack();
    void whatDoesNotBelongTogetherIsRefused_data();
    void whatDoesNotBelongTogetherIsRefused();
};

namespace
{

QJsonObject soundStream(int sampleRate, const QString &start)
{
    return {{"codec_type", "audio"}, {"sample_rate", QString::number(sampleRate)}, {"start_time", start}};
}

/// A picture and two streams of sound.
FileData fileWith(int sampleRate, const QString &soundStart = "0.000000")
{
    FileData file;
    file.fileName = "A001.take.mov";
    file.absoluteFilePath = "/card/A001.take.mov";
    file.rowNumber = 7;
    file.duration = 60.0;
    file.audioStreamMap = QByteArray("\1\2", 2);
    file.streams = {QJsonObject{{"codec_type", "video"}, {"start_time", "0.000000"}},
                    soundStream(sampleRate, soundStart), soundStream(sampleRate, soundStart)};
    file.audioStreams = {file.streams.at(1), file.streams.at(2)};
    return file;
}

struct Rate {
    int base = 25;
    bool ntsc = false;
    bool dropFrame = false;
};

QJsonObject reading(const Rate &rate, qint64 samples, double ppm = 0.0)
{
    return {{"Timecode", "of the window"},
            {"NTSC", rate.ntsc},
            {"DropFrame", rate.dropFrame},
            {"FrameRateFound", rate.base},
            {"FrameRateBaseFound", rate.base},
            {"ChannelFound", 1},
            {"FramePhase", 0.5},
            {"SamplesSinceMidnight", samples},
            {"FrameRateErrorPpm", ppm}};
}

} // namespace

Q_DECLARE_METATYPE(Rate)
Q_DECLARE_METATYPE(Readings)

void TestLaterWindows::theWindowsCoverTheFile_data()
{
    QTest::addColumn<double>("duration"); // [s]
    QTest::addColumn<int>("count");
    QTest::newRow("nothing") << 0.0 << 0;
    QTest::newRow("as long as the first window") << 3.0 << 1;
    QTest::newRow("a little longer") << 3.04 << 2;
    QTest::newRow("ten seconds") << 10.0 << 4;
    QTest::newRow("an hour") << 3600.0 << 1200;
}

void TestLaterWindows::theWindowsCoverTheFile()
{
    QFETCH(double, duration);
    FileData file;
    file.duration = duration;
    QTEST(laterwindows::count(file), "count");
}

void TestLaterWindows::theReaderSaysWhatIsWrongWithLabels_data()
{
    QTest::addColumn<QByteArray>("standardError");
    QTest::addColumn<QString>("fault");
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("no timecode") << QByteArray("LTCReader: no timecode found in /a: b/c.wav\n") << QString();
    QTest::newRow("labels") << QByteArray("LTCReader: no timecode found in /a: b/c.wav: held: twice\n")
                            << QString("held: twice");
    QTest::newRow("another file") << QByteArray("LTCReader: no timecode found in /a: held\n") << QString();
}

void TestLaterWindows::theReaderSaysWhatIsWrongWithLabels()
{
    QFETCH(QByteArray, standardError);
    QTEST(laterwindows::labelFault(standardError, "/a: b/c.wav"), "fault");
}

void TestLaterWindows::eachStreamOfAWindowIsExtracted()
{
    const QStringList expected{"-v",
                               "error",
                               "-nostdin",
                               "-y",
                               "-guess_layout_max",
                               "0",
                               "-ss",
                               "57",
                               "-t",
                               "3",
                               "-i",
                               "/card/A001.take.mov",
                               "-map",
                               "0:1",
                               "/tmp/x/A001_1_7.wav",
                               "-map",
                               "0:2",
                               "/tmp/x/A001_2_7.wav"};
    QCOMPARE(laterwindows::extraction(fileWith(48000), "/tmp/x", 57), expected);
}

void TestLaterWindows::exactWindowsAreCountedInSamples()
{
    const QStringList expected{"-v",
                               "error",
                               "-nostdin",
                               "-y",
                               "-guess_layout_max",
                               "0",
                               "-i",
                               "/card/A001.take.mov",
                               "-filter:a",
                               "atrim=start_sample=2513700:end_sample=2646000,asetpts=N/SR/TB",
                               "-map",
                               "0:2",
                               laterwindows::exactPath("/tmp/x", 0),
                               "-filter:a",
                               "atrim=start_sample=2646000:end_sample=2778300,asetpts=N/SR/TB",
                               "-map",
                               "0:2",
                               laterwindows::exactPath("/tmp/x", 1)};
    QCOMPARE(laterwindows::exactExtraction(fileWith(44100), "/tmp/x", 2, 57), expected);
    QVERIFY(laterwindows::exactPath("/tmp/x", 0) != laterwindows::exactPath("/tmp/x", 1));
}

void TestLaterWindows::timecodeIsCountedBack_data()
{
    QTest::addColumn<int>("sampleRate");
    QTest::addColumn<QString>("soundStart");
    QTest::addColumn<Rate>("rate");
    QTest::addColumn<int>("second");
    QTest::addColumn<qint64>("samples"); // of the window
    QTest::addColumn<QString>("timecode");
    QTest::addColumn<qint64>("samplesAtStart");

    constexpr qint64 tenOClock = 36000;
    QTest::newRow("25") << 48000 << "0.000000" << Rate{25} << 57 << (tenOClock + 57) * 48000 << "10:00:00:00"
                        << tenOClock * 48000;
    QTest::newRow("24 at 96 kHz") << 96000 << "0.000000" << Rate{24} << 30 << tenOClock * 96000
                                  << "09:59:30:00" << (tenOClock - 30) * 96000;
    QTest::newRow("30 at 44.1 kHz") << 44100 << "0.000000" << Rate{30} << 3 << tenOClock * 44100 + 735
                                    << "09:59:57:01" << (tenOClock - 3) * 44100 + 735; // half a frame
    // The first label of the first minute, which leaves two out: 1,800 frames of 1,601.6 samples.
    QTest::newRow("29.97 drop-frame") << 48000 << "0.000000" << Rate{30, true, true} << 20
                                      << qint64{2882880 + 20 * 48000} << "00:01:00;02" << qint64{2882880};
    QTest::newRow("23.976") << 48000 << "0.000000" << Rate{24, true} << 1001 << qint64{1001} * 48000 * 2
                            << "00:16:40:00" << qint64{1001} * 48000;
    QTest::newRow("over midnight") << 48000 << "0.000000" << Rate{25} << 6 << qint64{3 * 48000}
                                   << "23:59:57:00" << qint64{86397} * 48000;
    QTest::newRow("sound after the picture")
        << 48000 << "1.000000" << Rate{25} << 57 << (tenOClock + 57) * 48000 << "09:59:59:00"
        << (tenOClock - 1) * 48000;
}

void TestLaterWindows::timecodeIsCountedBack()
{
    QFETCH(int, sampleRate);
    QFETCH(QString, soundStart);
    QFETCH(Rate, rate);
    QFETCH(int, second);
    QFETCH(qint64, samples);
    const qint64 delay = qRound64(soundStart.toDouble() * sampleRate);
    const Readings readings{reading(rate, samples - delay), reading(rate, samples),
                            reading(rate, samples + 3 * sampleRate)};
    const LaterFinding finding =
        laterwindows::countedBack(fileWith(sampleRate, soundStart), 2, second, readings);
    QVERIFY2(finding.kind == LaterFinding::Kind::Found, qPrintable(finding.reason));
    QCOMPARE(finding.second, second);
    QCOMPARE(finding.stream, 2);
    QTEST(finding.result["Timecode"].toString(), "timecode");
    QTEST(qint64(finding.result["SamplesSinceMidnight"].toDouble()), "samplesAtStart");
    QCOMPARE(finding.result["ChannelFound"].toInt(), 1);
    QVERIFY(!finding.result.contains("FramePhase"));
}

void TestLaterWindows::whatDoesNotBelongTogetherIsRefused_data()
{
    QTest::addColumn<int>("second");
    QTest::addColumn<Readings>("readings");
    QTest::addColumn<QString>("reason"); // empty: taken
    constexpr qint64 here = qint64{36000} * 48000;
    constexpr qint64 next = here + qint64{3} * 48000;
    constexpr qint64 frame = 1920;
    const Rate rate;
    const QJsonObject exact = reading(rate, here);
    QJsonObject otherChannel = reading(rate, next);
    otherChannel["ChannelFound"] = 0;

    const QString jump = "the timecode at second 57 does not go on";
    QTest::newRow("a clean way back") << 57 << Readings{exact, exact, reading(rate, next)} << "";
    QTest::newRow("jitter") << 57 << Readings{exact, exact, reading(rate, next + 400)} << "";
    QTest::newRow("a frame more") << 57 << Readings{exact, exact, reading(rate, next + frame)} << jump;
    QTest::newRow("a frame less") << 57 << Readings{exact, exact, reading(rate, next - frame)} << jump;
    QTest::newRow("another rate") << 57 << Readings{exact, exact, reading({30}, next)} << jump;
    QTest::newRow("another channel") << 57 << Readings{exact, exact, otherChannel} << jump;

    const QString gaps = "the sound before the timecode at second 57 has gaps";
    QTest::newRow("coded sound, some samples off")
        << 57 << Readings{reading(rate, here + 200), exact, reading(rate, next)} << "";
    QTest::newRow("a gap of a frame")
        << 57 << Readings{reading(rate, here + frame), exact, reading(rate, next)} << gaps;
    QTest::newRow("a gap of a second")
        << 57 << Readings{reading(rate, here + 48000), exact, reading(rate, next)} << gaps;

    const auto drifting = [&](double ppm) {
        return Readings{exact, reading(rate, here, ppm), reading(rate, next, -ppm)};
    };
    const QString far = "the timecode at second %1 is too far from the beginning to be counted back";
    QTest::newRow("half an hour by one clock") << 1800 << drifting(0.0) << "";
    QTest::newRow("an hour by one clock") << 3600 << drifting(0.0) << far.arg(3600);
    QTest::newRow("a minute by good clocks") << 60 << drifting(50.0) << "";
    QTest::newRow("ten minutes by good clocks") << 600 << drifting(50.0) << far.arg(600);
    QTest::newRow("a minute by bad clocks") << 60 << drifting(300.0) << far.arg(60);

    QTest::newRow("an unknown rate") << 57 << Readings{exact, reading({50}, here), reading({50}, next)}
                                     << "the timecode at second 57 has no known rate";
}

void TestLaterWindows::whatDoesNotBelongTogetherIsRefused()
{
    QFETCH(int, second);
    QFETCH(Readings, readings);
    const LaterFinding finding = laterwindows::countedBack(fileWith(48000), 1, second, readings);
    QTEST(finding.reason, "reason");
    QCOMPARE(finding.kind,
             finding.reason.isEmpty() ? LaterFinding::Kind::Found : LaterFinding::Kind::NotFound);
}

QTEST_APPLESS_MAIN(TestLaterWindows)
#include "tst_laterwindows.moc"

// SPDX-License-Identifier: MIT
#include "testkit/media/verdict.h"

#include <QtTest>

using testsignals::LtcRate;

Q_DECLARE_METATYPE(mediakit::Recording)

/// The judgement of an exported file by what was put into its source.
class TestVerdict : public QObject
{
    Q_OBJECT

private slots:
    void pictureIsRightToTheFrame_data();
    void pictureIsRightToTheFrame();
    void soundIsRightToTheSample_data();
    void soundIsRightToTheSample();
    void missingFileIsRightOnlyWhereNothingIsToBeWritten_data();
    void missingFileIsRightOnlyWhereNothingIsToBeWritten();
    void fileThatMustNotBeThereIsWrong();
    void fileThatCannotBeReadIsWrong();
    void timecodeOfNoOriginIsWrong();
    void probeGivesTimecodeOfItsTrack();
    void probeGivesTimeReferenceAndChannels();
    void probeOfAnUnreadableFileGivesNothing();
};

namespace
{

constexpr qint64 startSample = 36000LL * 48000 + 1920; // ten hours and a frame at 25

mediakit::Recording picture(LtcRate rate)
{
    mediakit::Recording recording;
    recording.path = "CARD/clip.mov";
    recording.tracks = {{mediakit::toneChannel(440), mediakit::timecodeChannel({10, 20, 30, 4}, rate)}};
    return recording;
}

mediakit::Recording sound()
{
    mediakit::Recording recording;
    recording.path = "SOUND/take.WAV";
    recording.tracks = {{mediakit::toneChannel(440), mediakit::timecodeChannel({10, 0, 0, 1}, {25, false})}};
    return recording;
}

ExportedFile fileWithTimecode(const QString &timecode)
{
    return {true, timecode, std::nullopt, 1};
}

ExportedFile fileWithReference(std::optional<qint64> samples)
{
    return {true, {}, samples, 1};
}

} // namespace

void TestVerdict::pictureIsRightToTheFrame_data()
{
    QTest::addColumn<bool>("dropFrame");
    QTest::addColumn<QString>("timecode");
    QTest::addColumn<bool>("right");
    QTest::newRow("the frame that was put in") << false << "10:20:30:04" << true;
    QTest::newRow("one frame early") << false << "10:20:30:03" << false;
    QTest::newRow("one frame late") << false << "10:20:30:05" << false;
    QTest::newRow("one hour off") << false << "11:20:30:04" << false;
    QTest::newRow("no timecode") << false << "" << false;
    QTest::newRow("drop-frame written as such") << true << "10:20:30;04" << true;
    QTest::newRow("drop-frame written as non-drop") << true << "10:20:30:04" << false;
    QTest::newRow("non-drop written as drop-frame") << false << "10:20:30;04" << false;
}

void TestVerdict::pictureIsRightToTheFrame()
{
    QFETCH(bool, dropFrame);
    QFETCH(QString, timecode);
    const mediakit::Recording recording = picture({30, true, dropFrame});
    QTEST(judge(recording, fileWithTimecode(timecode)).right, "right");
}

void TestVerdict::soundIsRightToTheSample_data()
{
    QTest::addColumn<qint64>("samples"); // -1 = no time reference
    QTest::addColumn<bool>("right");
    QTest::newRow("the sample that was put in") << startSample << true;
    QTest::newRow("one sample early") << startSample - 1 << false;
    QTest::newRow("one sample late") << startSample + 1 << false;
    QTest::newRow("midnight") << qint64(0) << false;
    QTest::newRow("no time reference") << qint64(-1) << false;
}

void TestVerdict::soundIsRightToTheSample()
{
    QFETCH(qint64, samples);
    const std::optional<qint64> reference = samples < 0 ? std::nullopt : std::optional(samples);
    QTEST(judge(sound(), fileWithReference(reference)).right, "right");

    mediakit::Recording partner = sound();
    partner.tracks = {{mediakit::toneChannel(880)}};
    partner.siblingTimecode = mediakit::timecodeOf(sound());
    QTEST(judge(partner, fileWithReference(reference)).right, "right");
}

void TestVerdict::missingFileIsRightOnlyWhereNothingIsToBeWritten_data()
{
    mediakit::Recording broken = picture({25});
    broken.broken = true;
    mediakit::Recording timecodeAlone = sound();
    timecodeAlone.tracks.first().removeFirst();
    mediakit::Recording without = picture({25});
    without.tracks.first().removeLast();

    QTest::addColumn<mediakit::Recording>("recording");
    QTest::addColumn<bool>("right");
    QTest::newRow("broken file") << broken << true;
    QTest::newRow("sound file with nothing but timecode") << timecodeAlone << true;
    QTest::newRow("picture with timecode") << picture({25}) << false;
    QTest::newRow("picture without timecode") << without << false;
    QTest::newRow("sound with timecode") << sound() << false;
}

void TestVerdict::missingFileIsRightOnlyWhereNothingIsToBeWritten()
{
    QFETCH(mediakit::Recording, recording);
    QTEST(judge(recording, std::nullopt).right, "right");
}

void TestVerdict::fileThatMustNotBeThereIsWrong()
{
    mediakit::Recording broken = picture({25});
    broken.broken = true;
    QVERIFY(!judge(broken, fileWithTimecode("10:20:30:04")).right);

    mediakit::Recording timecodeAlone = sound();
    timecodeAlone.tracks.first().removeFirst();
    QVERIFY(!judge(timecodeAlone, fileWithReference(startSample)).right);
}

void TestVerdict::fileThatCannotBeReadIsWrong()
{
    QVERIFY(!judge(picture({25}), ExportedFile()).right);
}

void TestVerdict::timecodeOfNoOriginIsWrong()
{
    mediakit::Recording without = picture({25});
    without.tracks.first().removeLast();
    QVERIFY(judge(without, fileWithTimecode("")).right);
    QVERIFY(!judge(without, fileWithTimecode("00:00:00:00")).right);
    QVERIFY(!judge(without, fileWithReference(0)).right);
}

void TestVerdict::probeGivesTimecodeOfItsTrack()
{
    const ExportedFile file = parseProbe(R"({"streams": [
        {"codec_type": "video", "tags": {"handler_name": "picture"}},
        {"codec_type": "data", "codec_tag_string": "tmcd", "tags": {"timecode": "01:02:03;04"}}],
        "format": {"tags": {"encoder": "any"}}})");
    QVERIFY(file.readable);
    QCOMPARE(file.timecode, QString("01:02:03;04"));
    QVERIFY(!file.timeReference);
}

void TestVerdict::probeGivesTimeReferenceAndChannels()
{
    const ExportedFile file = parseProbe(R"({"streams": [
        {"codec_type": "audio", "channels": 3}, {"codec_type": "audio", "channels": 1}],
        "format": {"tags": {"time_reference": "3628800000"}}})");
    QCOMPARE(file.timeReference.value_or(-1), 3628800000LL);
    QCOMPARE(file.audioChannels, 4);
    QVERIFY(file.timecode.isEmpty());
}

void TestVerdict::probeOfAnUnreadableFileGivesNothing()
{
    QVERIFY(!parseProbe("{\n}").readable);
    QVERIFY(!parseProbe("").readable);
}

QTEST_APPLESS_MAIN(TestVerdict)
#include "tst_verdict.moc"

// SPDX-License-Identifier: MIT
#include "batch/reportrecord.h"
#include "testkit/fixtures/row.h"

#include <QJsonArray>
#include <QTest>

class TestReportRecord : public QObject
{
    Q_OBJECT

private slots:
    void aRecordHasAllKeys();
    void aFileWithTimecodeIsDescribed();
    void aRecordSaysWhereALateTimecodeWasFound();
    void aLinkedFileNamesItsSource();
    void whatIsNotKnownIsNull();
    void wrongIsWhatDidNotSucceed_data();
    void wrongIsWhatDidNotSucceed();
};

namespace
{

FileData cameraFile()
{
    FileData file;
    file.fileName = "A001.mov";
    file.absoluteFilePath = "/card/A001.mov";
    file.duration = 5.5;
    const QJsonObject picture{{"codec_name", "h264"},
                              {"avg_frame_rate", "30000/1001"},
                              {"r_frame_rate", "60000/1001"},
                              {"width", 1920},
                              {"height", 1080}};
    const QJsonObject first{{"codec_name", "pcm_s16le"}, {"channels", 2}, {"sample_rate", "48000"}};
    const QJsonObject second{{"codec_name", "aac"}, {"channels", 1}, {"sample_rate", "44100"}};
    file.streams = {picture, first, second};
    file.mainStream = picture;
    file.audioStreams = {first, second};
    file.setFileTC("01:00:00:00");
    return file;
}

FileData withTimecode(FileData file)
{
    file.setAudioTC("10:11:12;13", {2, 0});
    file.hasAudioTC = true;
    file.audioTCResult = {{"Timecode", "10:11:12;13"},
                          {"NTSC", true},
                          {"DropFrame", true},
                          {"FrameRateFound", 30},
                          {"FrameRateBaseFound", 30},
                          {"ChannelFound", 0},
                          {"SamplesSinceMidnight", 8000000000.0},
                          {"Confidence", 0.875},
                          {"LevelDbfs", -12.4},
                          {"FrameRateErrorPpm", 1.5},
                          {"UserBits", "0000002a"}};
    return file;
}

RowStatus statusOf(RowStatus::AudioTC audioTC)
{
    RowStatus status;
    status.fileTC = RowStatus::FileTC::Found;
    status.audioTC = audioTC;
    status.sourceName = "T003.wav";
    return status;
}

} // namespace

void TestReportRecord::aRecordHasAllKeys()
{
    QStringList keys = reportrecord::keys();
    const FileData file = withTimecode(cameraFile());
    for (const auto audioTC :
         {RowStatus::AudioTC::Found, RowStatus::AudioTC::Linked, RowStatus::AudioTC::Unread}) {
        std::sort(keys.begin(), keys.end());
        QCOMPARE(reportrecord::make(file, statusOf(audioTC), 7).keys(), keys);
    }
}

void TestReportRecord::aFileWithTimecodeIsDescribed()
{
    const ExportState exported{ExportState::Kind::Unverified, "/out/A001.MOV.unverified", 0, "one frame off",
                               "10:11:12;12"};
    const QJsonObject record = reportrecord::make(withTimecode(cameraFile()),
                                                  statusOf(RowStatus::AudioTC::Found), 1234567, exported);
    const QJsonObject expected{
        {"name", "A001.mov"},
        {"path", "/card/A001.mov"},
        {"result", "found"},
        {"reason", "one frame off"},
        {"durationSeconds", 5.5},
        {"sizeBytes", 1234567},
        {"pictureRate", "30000/1001"},
        {"pictureWidth", 1920},
        {"pictureHeight", 1080},
        {"pictureCodec", "h264"},
        {"soundCodecs", "pcm_s16le aac"},
        {"soundStreams", 2},
        {"soundChannels", 3},
        {"fileTimecode", "01:00:00:00"},
        {"audioTimecode", "10:11:12;13"},
        {"frameRate", 29.97},
        {"dropFrame", true},
        {"stream", 2},
        {"channel", 1},
        {"samplesSinceMidnight", 8000000000.0},
        {"sampleRate", 44100},
        {"confidence", 0.875},
        {"levelDbfs", -12.4},
        {"clockOffsetPpm", 1.5},
        {"userBits", "0000002a"},
        {"foundAtSecond", 0},
        {"linkedFrom", QJsonValue()},
        {"exportResult", "unverified"},
        {"exportStart", "10:11:12;12"},
        {"verdict", "one frame off"},
        {"exportPath", "/out/A001.MOV.unverified"},
    };
    for (const QString &key : reportrecord::keys())
        QVERIFY2(record[key] == expected[key], qPrintable(key));
}

void TestReportRecord::aRecordSaysWhereALateTimecodeWasFound()
{
    LaterFinding later;
    later.kind = LaterFinding::Kind::Found;
    later.second = 57;
    const QJsonObject found =
        reportrecord::make(withTimecode(cameraFile()), statusOf(RowStatus::AudioTC::Found), 1, {}, later);
    QCOMPARE(found["foundAtSecond"].toInt(), 57);

    later.kind = LaterFinding::Kind::NotFound;
    const auto reason = [&later] {
        return reportrecord::make(cameraFile(), statusOf(RowStatus::AudioTC::NotFound), 1, {},
                                  later)["reason"]
            .toString();
    };
    QCOMPARE(reason(), QString("audio TC not found, searched to the end"));
    later.reason = "the timecode at second 57 does not go on";
    QCOMPARE(reason(), later.reason);
}

void TestReportRecord::aLinkedFileNamesItsSource()
{
    FileData file = cameraFile();
    QJsonObject passedOn = withTimecode(cameraFile()).audioTCResult;
    passedOn["SampleRate"] = 96000;
    file.setLinkedAudioTC(4, "10:11:12;13", passedOn);
    const QJsonObject record = reportrecord::make(file, statusOf(RowStatus::AudioTC::Linked), 1);
    QCOMPARE(record["result"].toString(), QString("linked"));
    QCOMPARE(record["linkedFrom"].toString(), QString("T003.wav"));
    QCOMPARE(record["audioTimecode"].toString(), QString("10:11:12;13"));
    QCOMPARE(record["sampleRate"].toInt(), 96000);
    for (const char *key : {"stream", "channel", "levelDbfs", "foundAtSecond"})
        QVERIFY2(record[QLatin1String(key)].isNull(), key); // they are the source's
}

void TestReportRecord::whatIsNotKnownIsNull()
{
    FileData file;
    file.fileName = "broken.mov";
    RowStatus status;
    status.audioTC = RowStatus::AudioTC::ProbeFailed;
    status.exitCode = 1000;
    const QJsonObject record = reportrecord::make(file, status, -1);
    QCOMPARE(record["result"].toString(), QString("failed"));
    QCOMPARE(record["reason"].toString(), QString("error while reading file data"));
    for (const char *key : {"sizeBytes", "durationSeconds", "pictureCodec", "soundStreams", "fileTimecode",
                            "audioTimecode", "frameRate", "confidence"})
        QVERIFY2(record[QLatin1String(key)].isNull(), key);
}

void TestReportRecord::wrongIsWhatDidNotSucceed_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("exported");
    QTest::addColumn<bool>("isWrong");
    row("found", "found", "", false);
    row("written", "found", "written", false);
    row("left out", "found", "left out", false);
    row("without timecode", "none", "", false);
    row("not read", "failed", "", true);
    row("not written", "linked", "failed", true);
    row("verified", "found", "verified", false);
    row("found wanting", "found", "unverified", true);
    row("interrupted", "found", "not done", true);
}

void TestReportRecord::wrongIsWhatDidNotSucceed()
{
    QFETCH(QString, result);
    QFETCH(QString, exported);
    QTEST(reportrecord::isWrong({{"result", result}, {"exportResult", exported}}), "isWrong");
}

QTEST_APPLESS_MAIN(TestReportRecord)
#include "tst_reportrecord.moc"

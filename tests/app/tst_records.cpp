// SPDX-License-Identifier: MIT
#include "app/records/applicationinfo.h"
#include "app/records/audiotcoptions.h"
#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "app/records/optiontables.h"
#include "app/records/recordtypes.h"

#include <QFileInfo>
#include <QTest>
#include <QUrl>

class TestRecords : public QObject
{
    Q_OBJECT

private slots:
    void aNewRecordHoldsTheDefaults();
    void settingTheFileTimecodeSetsItsFlag();
    void settingTheAudioTimecodeTakesTheLayoutOfItsStream_data();
    void settingTheAudioTimecodeTakesTheLayoutOfItsStream();
    void linkingSetsBothFlags();
    void aTimeReferenceBecomesATimeOfDay_data();
    void aTimeReferenceBecomesATimeOfDay();
    void newOptionsAreAllZero();
    void optionTablesHoldTheirCodes_data();
    void optionTablesHoldTheirCodes();
    void frameRatesAreTheDecimalsThatTheReaderIsTold();
    void exportTypesWalkInTheOrderOfTheirText();
    void codecRanksPreferTwentyFourBit();
    void recordTypesAreRegisteredUnderTheirNames_data();
    void recordTypesAreRegisteredUnderTheirNames();
};

void TestRecords::aNewRecordHoldsTheDefaults()
{
    const FileData record;
    QVERIFY(record.audioTC.isEmpty() && !record.audioTC.isNull());
    QVERIFY(record.fileTC.isEmpty() && !record.fileTC.isNull());
    QVERIFY(record.fileName.isNull() && record.baseName.isNull() && record.suffix.isNull());
    QVERIFY(record.absoluteFilePath.isNull() && record.tcChannelLayout.isNull());
    QCOMPARE(record.audioStreamIndex, -1);
    QCOMPARE(record.audioChannel, -1);
    QCOMPARE(record.rowNumber, -1);
    QCOMPARE(record.duration, 0.0);
    QCOMPARE(record.audioChannelCount, 0);
    QVERIFY(!record.hasAudioTC && !record.hasFileTC && !record.audioTCLinked);
    QVERIFY(!record.isGoPro && !record.audioTCPending);
    QVERIFY(!record.lastModified.isValid());
    QVERIFY(record.audioStreamMap.isEmpty() && record.audioStreams.isEmpty() && record.streams.isEmpty());
    QVERIFY(record.mainStream.isEmpty() && record.format.isEmpty() && record.audioTCResult.isEmpty());
}

void TestRecords::settingTheFileTimecodeSetsItsFlag()
{
    FileData record;
    record.setFileTC("10:00:00:00");
    QCOMPARE(record.fileTC, QString("10:00:00:00"));
    QVERIFY(record.hasFileTC);
}

void TestRecords::settingTheAudioTimecodeTakesTheLayoutOfItsStream_data()
{
    QTest::addColumn<int>("stream");
    QTest::addColumn<QString>("layout");
    QTest::newRow("a stream with a layout") << 1 << "stereo";
    QTest::newRow("a stream without a layout") << 0 << QString();
    QTest::newRow("no stream") << -1 << QString();
    QTest::newRow("a stream beyond the last") << 2 << QString();
}

void TestRecords::settingTheAudioTimecodeTakesTheLayoutOfItsStream()
{
    QFETCH(int, stream);
    QFETCH(QString, layout);
    FileData record;
    record.streams =
        QJsonArray{QJsonObject{{"codec_type", "video"}}, QJsonObject{{"channel_layout", "stereo"}}};
    record.setAudioTC("01:02:03:04", {stream, 3});
    QCOMPARE(record.audioTC, QString("01:02:03:04"));
    QCOMPARE(record.audioStreamIndex, stream);
    QCOMPARE(record.audioChannel, 3);
    QCOMPARE(record.tcChannelLayout, layout);
    QVERIFY(!record.hasAudioTC);
}

void TestRecords::linkingSetsBothFlags()
{
    FileData record;
    record.setLinkedAudioTC(7, "01:02:03:04", QJsonObject{{"NTSC", true}});
    QCOMPARE(record.linkedRow, 7);
    QCOMPARE(record.audioTC, QString("01:02:03:04"));
    QCOMPARE(record.audioTCResult, (QJsonObject{{"NTSC", true}}));
    QVERIFY(record.audioTCLinked && record.hasAudioTC);
}

void TestRecords::aTimeReferenceBecomesATimeOfDay_data()
{
    QTest::addColumn<qint64>("samples");
    QTest::addColumn<int>("sampleRate"); // [Hz]
    QTest::addColumn<QString>("text");
    QTest::newRow("ten o'clock") << qint64{1728000000} << 48000 << "10:00:00.000";
    QTest::newRow("half a second more") << qint64{1728024000} << 48000 << "10:00:00.500";
    QTest::newRow("milliseconds are cut, not rounded") << qint64{47999} << 48000 << "00:00:00.999";
    QTest::newRow("hours go on above 23") << qint64{48000} * 3600 * 25 << 48000 << "25:00:00.000";
    QTest::newRow("more than 32 bits at 192 kHz") << qint64{192000} * 86399 << 192000 << "23:59:59.000";
}

void TestRecords::aTimeReferenceBecomesATimeOfDay()
{
    QFETCH(qint64, samples);
    QFETCH(int, sampleRate);
    FileData record;
    record.setTimeReference(samples, sampleRate);
    QCOMPARE(record.timeReference, samples);
    QTEST(record.fileTC, "text");
    QVERIFY(record.hasFileTC);
}

void TestRecords::newOptionsAreAllZero()
{
    const AudioTCOptions reading;
    QVERIFY(reading.algorithm == 0 && reading.channel == 0 && reading.frameRate == 0.0 && !reading.allFiles);
    const ExportOptions options;
    QVERIFY(options.exportDir.isNull() && options.videoType == 0 && options.audioType == 0);
    QVERIFY(!options.muteAudioTC && !options.exportAll && options.progressSteps == 0);
}

void TestRecords::optionTablesHoldTheirCodes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("found");
    const auto row = [](const char *table, const QMap<QString, int> &codes, const char *text, int code) {
        QTest::addRow("%s: %s", table, text) << text << code << codes.value(text, -99);
    };
    row("video", exportTypes, "pass trough", 0);
    row("video", exportTypes, "MXF - MPEG2 422 50M (1920x1080)", 1);
    row("video", exportTypes, "MXF - DNxHD 36/45 (1920x1080)", 2);
    row("video", exportTypes, "MXF - DNxHD 115/120/145 (1920x1080)", 3);
    row("video", exportTypes, "MXF - DNxHD 175x/185x/220 (1920x1080)", 4);
    row("video", exportTypes, "QuickTime - pass trough", 5);
    row("video", exportTypes, "QuickTime - DNxHD 36/45 (1920x1080)", 6);
    row("video", exportTypes, "QuickTime - DNxHD 115/120/145 (1920x1080)", 7);
    row("video", exportTypes, "QuickTime - DNxHD 175x/185x/220 (1920x1080)", 8);
    row("audio", audioTypes, "pass trough", 0);
    row("audio", audioTypes, "PCM 16 bit", 1);
    row("audio", audioTypes, "PCM 24 bit", 2);
    row("channel", audioChannels, "auto", -1);
    row("channel", audioChannels, "channel 1", 0);
    row("channel", audioChannels, "channel 8", 7);
}

void TestRecords::optionTablesHoldTheirCodes()
{
    QFETCH(int, found);
    QTEST(found, "code");
}

void TestRecords::frameRatesAreTheDecimalsThatTheReaderIsTold()
{
    const QMap<QString, double> expected{{"auto", -1.0},      {"23.98 FPS", 23.98}, {"24.00 FPS", 24.0},
                                         {"25.00 FPS", 25.0}, {"29.97 FPS", 29.97}, {"30.00 FPS", 30.0}};
    QCOMPARE(frameRates, expected);
}

void TestRecords::exportTypesWalkInTheOrderOfTheirText()
{
    const QStringList texts = exportTypes.keys();
    QCOMPARE(texts.size(), 9);
    for (int i = 0; i < 4; ++i) {
        QVERIFY(texts.at(i).startsWith("MXF - "));
        QVERIFY(texts.at(i + 4).startsWith("QuickTime - "));
    }
    QCOMPARE(texts.last(), QString("pass trough"));
}

void TestRecords::codecRanksPreferTwentyFourBit()
{
    const QStringList byRank{"pcm_s24be", "pcm_s24le", "pcm_s16be", "pcm_s16le", "pcm_s32be", "pcm_s32le",
                             "pcm_alaw",  "pcm_f32be", "pcm_f32le", "pcm_f64be", "pcm_f64le", "pcm_mulaw",
                             "pcm_s8",    "pcm_u16be", "pcm_u16le", "pcm_u24be", "pcm_u24le", "pcm_u32be",
                             "pcm_u32le", "pcm_u8",    "aac",       "ac3"};
    QCOMPARE(audioCodecRank.size(), byRank.size());
    for (int rank = 0; rank < byRank.size(); ++rank) {
        QCOMPARE(audioCodecRank.key(rank), byRank.at(rank));
    }
}

void TestRecords::recordTypesAreRegisteredUnderTheirNames_data()
{
    registerRecordTypes();
    QTest::addColumn<int>("expected");
    QTest::newRow("QVector<FileData>") << qMetaTypeId<QVector<FD::FileData>>();
    QTest::newRow("FileData") << qMetaTypeId<FD::FileData>();
    QTest::newRow("FD::FileData") << qMetaTypeId<FD::FileData>();
    QTest::newRow("QList<QUrl>") << qMetaTypeId<QList<QUrl>>();
    QTest::newRow("QFileInfo") << qMetaTypeId<QFileInfo>();
    QTest::newRow("ExportOptions") << qMetaTypeId<ExportOptions>();
    QTest::newRow("AudioTCOptions") << qMetaTypeId<AudioTCOptions>();
}

void TestRecords::recordTypesAreRegisteredUnderTheirNames()
{
    QTEST(QMetaType::type(QTest::currentDataTag()), "expected");
}

QTEST_APPLESS_MAIN(TestRecords)
#include "tst_records.moc"

// SPDX-License-Identifier: MIT
#include "control/probedrecord.h"
#include "testkit/fixtures/row.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace
{

FileData probed(const char *json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (!document.isObject())
        qFatal("no JSON object: %s", qPrintable(error.errorString()));
    return probedRecord(document.object());
}

} // namespace

class TestProbedRecord : public QObject
{
    Q_OBJECT

private slots:
    void aMovieIsDescribedByItsStreams();
    void aWaveFileIsDescribedByItsSound();
    void theTimeReferenceOfAWaveFileIsItsTimecode_data();
    void theTimeReferenceOfAWaveFileIsItsTimecode();
    void theTimecodeOfAMovieIsATagOrATimecodeStream_data();
    void theTimecodeOfAMovieIsATagOrATimecodeStream();
    void aGoProIsToldByAnyEncoderTag_data();
    void aGoProIsToldByAnyEncoderTag();
    void theDurationIsANumberOfSeconds_data();
    void theDurationIsANumberOfSeconds();
    void noStreamIsMappedUnderAnothersNumber();
    void missingAndForeignValuesLeaveTheDefaults_data();
    void missingAndForeignValuesLeaveTheDefaults();
};

void TestProbedRecord::aMovieIsDescribedByItsStreams()
{
    const FileData file = probed(R"({
        "format": {"format_name": "mov,mp4", "duration": "12.5", "tags": {"time_reference": "1728000000"}},
        "streams": [
            {"index": 0, "codec_type": "Video", "codec_name": "mjpeg"},
            {"index": 1, "codec_type": "AUDIO", "channels": 2, "sample_rate": "48000"},
            {"index": 2, "codec_type": "data", "codec_tag_string": "rtmd"},
            {"index": 3, "codec_type": "audio", "channels": 6, "sample_rate": "48000"},
            {"index": 4, "codec_type": "video", "codec_name": "prores"}]})");
    QCOMPARE(file.audioStreamMap, QByteArray("\x01\x03"));
    QCOMPARE(file.audioStreams.size(), 2);
    QCOMPARE(file.audioStreams.at(1).toObject().value("channels").toInt(), 6);
    QCOMPARE(file.streams.size(), 5);
    QCOMPARE(file.mainStream.value("codec_name").toString(), QString("prores")); // the last one
    QCOMPARE(file.format.value("format_name").toString(), QString("mov,mp4"));
    QCOMPARE(file.duration, 12.5);
    QCOMPARE(file.audioChannelCount, 0); // not counted
    QCOMPARE(file.timeReference, 0);
    QVERIFY(file.fileTC.isEmpty() && !file.hasFileTC && !file.isGoPro);
    QVERIFY(!file.hasAudioTC);
    QCOMPARE(file.rowNumber, -1);
}

void TestProbedRecord::aWaveFileIsDescribedByItsSound()
{
    const FileData file = probed(R"({
        "format": {"format_name": "WAV", "duration": "3.000", "tags": {"timecode": "01:00:00:00"}},
        "streams": [
            {"codec_type": "audio", "channels": 2, "tags": {"encoder": "GoPro"}},
            {"codec_type": "video", "channels": 9, "tags": {"encoder": "gopro hero"}},
            {"codec_type": "audio", "channels": 3, "codec_tag_string": "tmcd"}]})");
    QCOMPARE(file.audioStreamMap, QByteArray("\x00\x02", 2));
    QCOMPARE(file.audioStreams.size(), 2);
    QCOMPARE(file.audioChannelCount, 5);
    QVERIFY(file.mainStream.isEmpty());
    QVERIFY(!file.isGoPro);         // the encoder is not looked at
    QVERIFY(file.fileTC.isEmpty()); // nor is a timecode tag
    QVERIFY(!file.hasFileTC);
}

void TestProbedRecord::theTimeReferenceOfAWaveFileIsItsTimecode_data()
{
    QTest::addColumn<QString>("timeReference");
    QTest::addColumn<QString>("streams");
    QTest::addColumn<QString>("timecode");
    const QString at48k = R"([{"codec_type": "audio", "sample_rate": "48000"}])";
    row("ten hours", "1728000000", at48k, "10:00:00.000");
    row("half a second later", "1728024000", at48k, "10:00:00.500");
    row("just below a millisecond is cut", "47", at48k, "00:00:00.000");
    row("a single sample", "1", at48k, "00:00:00.000");
    row("more than a day", "4320000000", at48k, "25:00:00.000");
    row("more than 32 bit", "17280000000", at48k, "100:00:00.000");
    row("zero", "0", at48k, "");
    row("negative", "-48000", at48k, "");
    row("no number", "noon", at48k, "");
    row("no sample rate", "1728000000", R"([{"codec_type": "audio"}])", "");
    row("sample rate zero", "1728000000", R"([{"codec_type": "audio", "sample_rate": "0"}])", "");
    row("no audio stream", "1728000000", R"([{"codec_type": "data", "sample_rate": "48000"}])", "");
    row("the last audio stream with a rate counts", "1728000000",
        R"([{"codec_type": "audio", "sample_rate": "44100"}, {"codec_type": "audio", "sample_rate": "96000"},
               {"codec_type": "audio"}, {"codec_type": "audio", "sample_rate": null}])",
        "05:00:00.000");
}

void TestProbedRecord::theTimeReferenceOfAWaveFileIsItsTimecode()
{
    QFETCH(QString, timeReference);
    QFETCH(QString, streams);
    QFETCH(QString, timecode);
    const QString json =
        R"({"format": {"format_name": "wav", "tags": {"time_reference": "%1"}}, "streams": %2})";
    const FileData file = probed(json.arg(timeReference, streams).toUtf8().constData());
    QCOMPARE(file.fileTC, timecode);
    QCOMPARE(file.hasFileTC, !timecode.isEmpty());
    QCOMPARE(file.timeReference, timecode.isEmpty() ? 0 : timeReference.toLongLong());
}

void TestProbedRecord::theTimecodeOfAMovieIsATagOrATimecodeStream_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("timecode");
    QTest::addColumn<bool>("found");
    row("tag of the format", R"({"format": {"tags": {"timecode": "01:00:00:00"}},
               "streams": [{"codec_tag_string": "tmcd", "tags": {"timecode": "02:00:00:00"}}]})",
        "01:00:00:00", true);
    row("one timecode stream",
        R"({"format": {}, "streams": [{"codec_tag_string": "TMCD", "tags": {"timecode": "02:00:00:00"}}]})",
        "02:00:00:00", true);
    row("the second of two timecode streams",
        R"({"streams": [{"codec_tag_string": "tmcd", "tags": {"timecode": "02:00:00:00"}},
                           {"codec_tag_string": "tmcd", "tags": {"timecode": "03:00:00:00"}}]})",
        "03:00:00:00", true);
    row("the last stream wins, also without a timecode",
        R"({"streams": [{"codec_tag_string": "tmcd", "tags": {"timecode": "02:00:00:00"}},
                           {"codec_tag_string": "tmcd"}]})",
        "", true);
    row("a null tag is absent", R"({"format": {"tags": {"timecode": null}},
               "streams": [{"codec_tag_string": "tmcd", "tags": {"timecode": "02:00:00:00"}}]})",
        "02:00:00:00", true);
    row("a timecode tag of another stream",
        R"({"streams": [{"codec_type": "video", "tags": {"timecode": "02:00:00:00"}}]})", "", false);
    row("none", R"({"format": {"tags": {}}, "streams": []})", "", false);
}

void TestProbedRecord::theTimecodeOfAMovieIsATagOrATimecodeStream()
{
    QFETCH(QString, json);
    const FileData file = probed(json.toUtf8().constData());
    QTEST(file.fileTC, "timecode");
    QTEST(file.hasFileTC, "found");
}

void TestProbedRecord::aGoProIsToldByAnyEncoderTag_data()
{
    QTest::addColumn<QString>("stream");
    QTest::addColumn<bool>("isGoPro");
    row("video", R"({"codec_type": "video", "tags": {"encoder": "GoPro AVC encoder"}})", true);
    row("audio", R"({"codec_type": "audio", "tags": {"encoder": "gopro hero"}})", true);
    row("data", R"({"codec_type": "data", "tags": {"encoder": "the GOPRO SOS"}})", true);
    row("another maker", R"({"codec_type": "video", "tags": {"encoder": "Lavc59"}})", false);
    row("another tag", R"({"codec_type": "video", "tags": {"handler_name": "GoPro"}})", false);
}

void TestProbedRecord::aGoProIsToldByAnyEncoderTag()
{
    QFETCH(QString, stream);
    const QString json = R"({"format": {"format_name": "mov"}, "streams": [%1, {"codec_type": "audio"}]})";
    QTEST(probed(json.arg(stream).toUtf8().constData()).isGoPro, "isGoPro");
}

void TestProbedRecord::theDurationIsANumberOfSeconds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("seconds");
    row("fraction", R"("59.500000")", 59.5);
    row("not a number", R"("N/A")", 0.0);
    row("decimal comma", R"("59,5")", 0.0);
    row("nan", R"("nan")", 0.0);
    row("infinite", R"("inf")", 0.0);
    row("finite, but beyond all bounds", R"("1e300")", 1e300);
    row("null", "null", 0.0);
    row("a JSON number", "12.5", 0.0);
}

void TestProbedRecord::theDurationIsANumberOfSeconds()
{
    QFETCH(QString, text);
    for (const char *name : {"wav", "mov"}) {
        const QString json = R"({"format": {"format_name": "%1", "duration": %2}})";
        QTEST(probed(json.arg(QString(name), text).toUtf8().constData()).duration, "seconds");
    }
}

void TestProbedRecord::noStreamIsMappedUnderAnothersNumber()
{
    QStringList streams;
    for (int i = 0; i < 300; ++i)
        streams += R"({"codec_type": "audio"})";
    const FileData file = probed((R"({"streams": [)" + streams.join(',').toUtf8() + "]}").constData());
    QCOMPARE(file.audioStreams.size(), 300);
    QCOMPARE(file.audioStreamMap.size(), 256);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(int(static_cast<uchar>(file.audioStreamMap.at(i))), i);
}

void TestProbedRecord::missingAndForeignValuesLeaveTheDefaults_data()
{
    QTest::addColumn<QString>("json");
    row("foreign key only", R"({"error": {"code": -1}})");
    row("numbers for objects", R"({"format": 5, "streams": 5})");
    row("streams of other types", R"({"streams": [1, null, "audio", ["audio"]]})");
    row("tags of other types",
        R"({"format": {"format_name": "wav", "tags": "x"}, "streams": [{"tags": 7}]})");
    row("texts of other types",
        R"({"format": {"format_name": 1}, "streams": [{"codec_type": 2, "codec_tag_string": []}]})");
}

void TestProbedRecord::missingAndForeignValuesLeaveTheDefaults()
{
    QFETCH(QString, json);
    const FileData file = probed(json.toUtf8().constData());
    QVERIFY(file.audioStreamMap.isEmpty() && file.audioStreams.isEmpty() && file.mainStream.isEmpty());
    QVERIFY(file.fileTC.isEmpty() && !file.fileTC.isNull() && !file.hasFileTC && !file.isGoPro);
    QCOMPARE(file.audioChannelCount, 0);
    QCOMPARE(file.duration, 0.0);
}

QTEST_APPLESS_MAIN(TestProbedRecord)
#include "tst_probedrecord.moc"

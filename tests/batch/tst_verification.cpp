// SPDX-License-Identifier: MIT
#include "batch/verification.h"
#include "testkit/fixtures/row.h"

#include "testkit/fixtures/samplerecords.h"

#include <QJsonArray>
#include <QTest>

using namespace verification;
using samplerecords::mediaFile;
using samplerecords::reading;
using samplerecords::withTimecode;

class TestVerification : public QObject
{
    Q_OBJECT

private slots:
    void theTimecodeChannelIsExpectedToGo_data();
    void theTimecodeChannelIsExpectedToGo();
    void framesAreCountedInPiecesOfAnySize();
    void theTimesOfFramesDoNotMatter();
    void theStartIsCountedAtTheNewPicturesRate_data();
    void theStartIsCountedAtTheNewPicturesRate();
    void aLinkedSoundFileStartsAtItsOwnRate();
    void samplesAreComparedWherePcmStaysDeepEnough_data();
    void samplesAreComparedWherePcmStaysDeepEnough();
    void eachFaultIsSaid_data();
    void eachFaultIsSaid();
};

namespace
{

QJsonObject sound(const QString &codec, int channels, int bits, const QString &start = "0.000000")
{
    return {{"codec_type", "audio"},   {"codec_name", codec},    {"channels", channels},
            {"bits_per_sample", bits}, {"sample_rate", "48000"}, {"duration", "10.0"},
            {"start_time", start}};
}

FileData camera()
{
    return withTimecode(mediaFile("/in/a.mov", {sound("pcm_s24le", 4, 24)}), 1, 3);
}

ExportOptions options(int videoType, bool mute)
{
    ExportOptions chosen;
    chosen.videoType = videoType;
    chosen.muteAudioTC = mute;
    return chosen;
}

/// The probe of a new file with a picture at \a rate, \a sounds and a start.
QJsonObject written(const QString &rate, const QVector<QJsonObject> &sounds,
                    const QString &start = "10:00:00:00")
{
    QJsonArray streams{QJsonObject{{"index", 0},
                                   {"codec_type", "video"},
                                   {"avg_frame_rate", rate},
                                   {"codec_tag_string", "avc1"},
                                   {"tags", QJsonObject{{"timecode", start}}}}};
    for (QJsonObject sound : sounds) {
        sound["index"] = streams.size();
        streams += sound;
    }
    return {{"streams", streams}, {"format", QJsonObject{{"duration", "10.0"}}}};
}

QStringList keptOf(const Expectation &expected)
{
    QStringList kept;
    for (const Sound &sound : expected.sounds) {
        QStringList channels;
        for (const int channel : sound.kept)
            channels += QString::number(channel);
        kept += QString("%1:%2").arg(sound.stream).arg(channels.join(','));
    }
    return kept;
}

} // namespace

Q_DECLARE_METATYPE(verification::Contents)

void TestVerification::theTimecodeChannelIsExpectedToGo_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<ExportOptions>("options");
    QTest::addColumn<QStringList>("kept");
    const QJsonObject mono = sound("pcm_s24le", 1, 24);
    row("muted", camera(), options(5, true), QStringList{"1:0,1,2"});
    row("audible", camera(), options(5, false), QStringList{"1:0,1,2,3"});
    row("a stream that is nothing else goes", withTimecode(mediaFile("/in/a.mov", {mono, mono, mono}), 2, 0),
        options(5, true), QStringList{"1:0", "3:0"});
    row("MXF coded as MXF keeps all", withTimecode(mediaFile("/in/a.MXF", {mono, mono}), 2, 0),
        options(2, true), QStringList{"1:0", "2:0"});
    row("MXF as QuickTime loses it", withTimecode(mediaFile("/in/a.mxf", {mono, mono}), 2, 0),
        options(6, true), QStringList{"1:0"});
    row("no timecode, nothing goes", mediaFile("/in/a.mov", {mono, mono}), options(5, true),
        QStringList{"1:0", "2:0"});
}

void TestVerification::theTimecodeChannelIsExpectedToGo()
{
    QFETCH(FileData, file);
    QFETCH(ExportOptions, options);
    QTEST(keptOf(expectationOf(file, options)), "kept");
}

void TestVerification::framesAreCountedInPiecesOfAnySize()
{
    const QByteArray text = "#format: frame checksums\n#tb 0: 1/25\n0, 0, 0, 1, 70, aa\n0, 1, 1, 1, 80, bb\n";
    FrameDigest whole;
    whole.add(text);
    QCOMPARE(whole.frames(), 2);
    for (int size = 1; size < 9; ++size) {
        FrameDigest pieces;
        for (int at = 0; at < text.size(); at += size)
            pieces.add(text.mid(at, size));
        QCOMPARE(pieces.frames(), 2);
        QCOMPARE(pieces.hash(), whole.hash());
    }
}

void TestVerification::theTimesOfFramesDoNotMatter()
{
    const auto hashOf = [](const QByteArray &text) {
        FrameDigest digest;
        digest.add(text);
        return digest.hash();
    };
    QCOMPARE(hashOf("0, 0, 0, 1, 70, aa\n0, 1, 1, 1, 80, bb\n"),
             hashOf("0, 5, 7, 512, 70, aa\n0, 6, 8, 512, 80, bb\n"));
    QVERIFY(hashOf("0, 0, 0, 1, 70, aa\n0, 1, 1, 1, 80, bb\n") !=
            hashOf("0, 0, 0, 1, 80, bb\n0, 1, 1, 1, 70, aa\n"));
}

void TestVerification::theStartIsCountedAtTheNewPicturesRate_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<QString>("start");
    row("the same", "25/1", "10:00:00:12");
    row("twice as fast", "50/1", "10:00:00:24");
    row("no picture's rate", "0/0", "10:00:00:12");
}

void TestVerification::theStartIsCountedAtTheNewPicturesRate()
{
    QFETCH(QString, rate);
    FileData file = camera();
    file.audioTC = "10:00:00:12";
    const Expectation expected = expectationOf(file, options(5, true));
    QTEST(expectedStart(file, expected, written(rate, {})), "start");
    file.hasAudioTC = false;
    QCOMPARE(expectedStart(file, expected, written(rate, {})), QString());
}

void TestVerification::aLinkedSoundFileStartsAtItsOwnRate()
{
    FileData file = mediaFile("/in/a.wav", {sound("pcm_s24le", 2, 24)});
    QJsonObject passedOn = reading(25, 25, false, false, 96000 * 100);
    passedOn["SampleRate"] = 96000;
    file.setLinkedAudioTC(3, "00:01:40:00", passedOn);
    const Expectation expected = expectationOf(file, options(0, true));
    QCOMPARE(keptOf(expected), QStringList{"0:0,1"}); // the timecode is another file's
    QCOMPARE(expectedStart(file, expected, {}), QString::number(48000 * 100));
}

void TestVerification::samplesAreComparedWherePcmStaysDeepEnough_data()
{
    QTest::addColumn<QJsonObject>("source");
    QTest::addColumn<QJsonObject>("result");
    QTest::addColumn<bool>("areKept");
    row("the same", sound("pcm_s24le", 1, 24), sound("pcm_s24le", 1, 24), true);
    row("deeper", sound("pcm_s16be", 1, 16), sound("pcm_s24le", 1, 24), true);
    row("cut", sound("pcm_s24le", 1, 24), sound("pcm_s16le", 1, 16), false);
    row("floating point as it is", sound("pcm_f32le", 1, 32), sound("pcm_f32le", 1, 32), true);
    row("floating point cut", sound("pcm_f32le", 1, 32), sound("pcm_s24le", 1, 24), false);
    row("coded sound", sound("aac", 1, 0), sound("pcm_s24le", 1, 24), false);
    row("sound that begins late", sound("pcm_s24le", 1, 24, "0.5"), sound("pcm_s24le", 1, 24), false);
    QJsonObject resampled = sound("pcm_s24le", 1, 24);
    resampled["sample_rate"] = "44100";
    row("resampled", resampled, sound("pcm_s24le", 1, 24), false);
}

void TestVerification::samplesAreComparedWherePcmStaysDeepEnough()
{
    QFETCH(QJsonObject, source);
    QFETCH(QJsonObject, result);
    const FileData file = mediaFile("/in/a.mov", {source});
    QTEST(areSamplesKept(file, expectationOf(file, options(5, false)), 0, written("25/1", {result})),
          "areKept");
}

void TestVerification::eachFaultIsSaid_data()
{
    QTest::addColumn<QJsonObject>("probe");
    QTest::addColumn<QByteArray>("mediainfo");
    QTest::addColumn<Contents>("result");
    QTest::addColumn<QStringList>("faults");
    const QJsonObject three = sound("pcm_s24le", 3, 24);
    const QJsonObject good = written("25/1", {three});
    const QByteArray other = R"({"media":{"track":[{"@type":"Video","TimeCode_FirstFrame":"00:00:00:00"},)"
                             R"({"@type":"Other","TimeCode_FirstFrame":"10:00:00:01"}]}})";
    const Contents same{250, "picture", "sound"};
    row("none", good, QByteArray(), same, QStringList{});
    row("nothing can be read", QJsonObject(), QByteArray(), same, QStringList{"it cannot be read"});
    row("another start", written("25/1", {three}, "09:59:59:24"), QByteArray(), same,
        QStringList{"ffprobe reads the start \"09:59:59:24\" instead of 10:00:00:00"});
    row("another start in the timecode track", good, other, same,
        QStringList{"mediainfo reads the start \"10:00:00:01\" instead of 10:00:00:00"});
    row("a frame lost", good, QByteArray(), Contents{249, "picture", "sound"},
        QStringList{"249 frames instead of 250"});
    row("a frame changed", good, QByteArray(), Contents{250, "other", "sound"},
        QStringList{"frames are not the source's"});
    row("a sample changed", good, QByteArray(), Contents{250, "picture", "other"},
        QStringList{"samples are not the source's"});
    row("the timecode still there", written("25/1", {sound("pcm_s24le", 4, 24)}), QByteArray(), same,
        QStringList{"4 channels instead of 3 in audio stream 1"});
    row("no sound", written("25/1", {}), QByteArray(), same, QStringList{"0 audio streams instead of 1"});
    const QJsonArray streams = good["streams"].toArray();
    QJsonObject cover = streams.at(0).toObject();
    cover["disposition"] = QJsonObject{{"attached_pic", 1}};
    const auto probeOf = [](const QJsonArray &all) { return QJsonObject{{"streams", all}}; };
    row("a cover image as well", probeOf({streams.at(0), streams.at(1), cover}), QByteArray(), same,
        QStringList{});
    row("only a cover image", probeOf({cover, streams.at(1)}), QByteArray(), same,
        QStringList{"the picture is missing"});
    QJsonObject cut = three;
    cut["duration"] = "9.8";
    row("sound cut off", written("25/1", {cut}), QByteArray(), same,
        QStringList{"audio stream 1 is too short"});
    row("several faults", written("25/1", {}, ""), QByteArray(), Contents{0, {}, {}},
        QStringList{"ffprobe reads the start \"\" instead of 10:00:00:00", "the picture cannot be read",
                    "0 audio streams instead of 1"});
}

void TestVerification::eachFaultIsSaid()
{
    QFETCH(QJsonObject, probe);
    QFETCH(QByteArray, mediainfo);
    QFETCH(Contents, result);
    const FileData file = camera();
    const Contents source{250, "picture", "sound"};
    const QStringList found =
        verification::faults(file, expectationOf(file, options(5, true)), probe, mediainfo, source, result);
    QTEST(found, "faults");
}

QTEST_APPLESS_MAIN(TestVerification)
#include "tst_verification.moc"

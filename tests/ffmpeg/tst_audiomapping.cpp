// SPDX-License-Identifier: MIT
#include "ffmpeg/audiomapping.h"
#include "ffmpeg/toolarguments.h"
#include "testkit/fixtures/row.h"
#include "testkit/fixtures/samplerecords.h"

#include <QTest>

#include <limits>

using samplerecords::mediaFile;
using samplerecords::sound;
using samplerecords::withTimecode;

class TestAudioMapping : public QObject
{
    Q_OBJECT

private slots:
    void pairsNameTheOtherChannel_data();
    void pairsNameTheOtherChannel();
    void listedCodecsAreKept_data();
    void listedCodecsAreKept();
    void withTimecodeAllSoundGoesTheToolsWay_data();
    void withTimecodeAllSoundGoesTheToolsWay();
    void theTimecodeChannelIsLeftOut_data();
    void theTimecodeChannelIsLeftOut();
    void aClaimOfManyChannelsIsBounded();
};

namespace
{

ExportOptions muted(int videoType, int audioType)
{
    ExportOptions options;
    options.videoType = videoType;
    options.audioType = audioType;
    options.muteAudioTC = true;
    return options;
}

} // namespace

void TestAudioMapping::pairsNameTheOtherChannel_data()
{
    QTest::addColumn<QJsonObject>("stream");
    QTest::addColumn<int>("timecodeChannel");
    QTest::addColumn<int>("expected");

    row("stereo, timecode left", sound("pcm_s16le", 2, "stereo"), 0, 1);
    row("stereo, timecode right", sound("pcm_s16le", 2, "stereo"), 1, 0);
    row("stereo in capitals", sound("pcm_s16le", 2, "STEREO"), 0, 1);
    row("big-endian pair without a layout", sound("pcm_s24be", 2), 0, 1);
    row("big-endian pair, timecode right", sound("pcm_s24be", 2), 1, 0);
    row("little-endian pair without a layout", sound("pcm_s24le", 2), 0, 0);
    row("little-endian pair with another layout", sound("pcm_s24le", 2, "downmix"), 1, 1);
    row("big-endian, four channels", sound("pcm_s24be", 4), 0, 0);
    row("four channels", sound("pcm_s24le", 4, "4.0"), 3, 3);
    row("mono", sound("pcm_s24le", 1, "mono"), 0, 0);
}

void TestAudioMapping::pairsNameTheOtherChannel()
{
    QFETCH(QJsonObject, stream);
    QFETCH(int, timecodeChannel);
    QFETCH(int, expected);

    const auto file = withTimecode(mediaFile("/a.mov", {stream}), 1, timecodeChannel);
    const audiomapping::Channel channel = audiomapping::singledOut(file);
    QCOMPARE(channel.stream, 1);
    QCOMPARE(channel.channel, expected);
}

void TestAudioMapping::listedCodecsAreKept_data()
{
    QTest::addColumn<QString>("codec");
    QTest::addColumn<QString>("expected");

    row("16 bit PCM", "pcm_s16le", "pcm_s16le");
    row("24 bit big-endian PCM, rank 0", "pcm_s24be", "pcm_s24be");
    row("AAC", "aac", "aac");
    row("AC-3", "ac3", "ac3");
    row("an unlisted codec", "mp3", "other");
    row("no codec known", "", "other");
}

void TestAudioMapping::listedCodecsAreKept()
{
    QFETCH(QString, codec);
    QFETCH(QString, expected);
    QCOMPARE(audiomapping::keptCodec(sound(codec, 2), "other"), expected);
}

void TestAudioMapping::withTimecodeAllSoundGoesTheToolsWay_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<int>("videoType");
    QTest::addColumn<int>("audioType");
    QTest::addColumn<QStringList>("expected");

    const auto pcm16 = sound("pcm_s16be", 2, "stereo");
    const auto movie = withTimecode(mediaFile("/a.mov", {pcm16}), 1, 0);
    row("PCM 16 bit", movie, 5, 1, QStringList{"-acodec", "pcm_s16le"});
    row("PCM 24 bit", movie, 1, 2, QStringList{"-acodec", "pcm_s24le"});
    row("an audio type that is not there", movie, 1, 3, QStringList{"-acodec", "pcm_s16le"});
    row("pass through keeps the codec", movie, 0, 0, QStringList{"-acodec", "pcm_s16be"});
    row("pass through takes the widest stream",
        mediaFile("/a.mov", {sound("pcm_s24le", 1), sound("aac", 6), sound("ac3", 2)}), 5, 0,
        QStringList{"-acodec", "aac"});
    row("pass through takes the first of equals", mediaFile("/a.mov", {sound("ac3", 2), sound("aac", 2)}), 5,
        0, QStringList{"-acodec", "ac3"});
    row("pass through of an unlisted codec", mediaFile("/a.mov", {sound("mp3", 2)}), 5, 0,
        QStringList{"-acodec", "pcm_s24be"});
    row("pass through without sound", mediaFile("/a.mov", {}), 5, 0, QStringList());
    row("MXF to MXF", mediaFile("/a.mxf", {pcm16}), 1, 2, QStringList{"-acodec", "pcm_s24le"});

    const auto wave = mediaFile("/a.wav", {sound("pcm_s24le", 2)});
    row("WAV, PCM 16 bit", wave, 0, 1, QStringList{"-write_bext", "1", "-acodec", "pcm_s16le"});
    row("WAV as an MXF type", wave, 2, 2, QStringList{"-write_bext", "1", "-acodec", "pcm_s24le"});
    row("WAV, pass through", wave, 0, 0, QStringList{"-write_bext", "1", "-acodec", "pcm_s24le"});
    row("WAV, pass through of an unlisted codec", mediaFile("/a.wav", {sound("adpcm_ms", 2)}), 0, 0,
        QStringList{"-write_bext", "1", "-acodec", "pcm_s24le"});
}

void TestAudioMapping::withTimecodeAllSoundGoesTheToolsWay()
{
    QFETCH(FileData, file);
    QFETCH(int, videoType);
    QFETCH(int, audioType);
    QFETCH(QStringList, expected);

    ExportOptions options;
    options.audioType = audioType;
    options.videoType = videoType;
    const auto container = outputname::containerFor(file.absoluteFilePath, videoType);
    QCOMPARE(audiomapping::arguments(file, options, container), expected);
}

void TestAudioMapping::theTimecodeChannelIsLeftOut_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<ExportOptions>("options");
    QTest::addColumn<QStringList>("expected");

    const QStringList movieHead{"-map", "0:v", "-map_metadata", "-1"};
    const auto stereo = sound("pcm_s16le", 2, "stereo");
    const auto mono = sound("pcm_s16le", 1, "mono");
    const auto four = sound("pcm_s24le", 4, "4.0");

    row("stereo, timecode on channel 0: 1 is singled out", withTimecode(mediaFile("/a.mov", {stereo}), 1, 0),
        muted(5, 2),
        movieHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.1", "-map_channel", "0.1.0:0.0",
                                "-acodec", "pcm_s24le"});
    row("stereo, timecode on channel 1: 0 is singled out", withTimecode(mediaFile("/a.mov", {stereo}), 1, 1),
        muted(5, 1),
        movieHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.0", "-map_channel", "0.1.1:0.0",
                                "-acodec", "pcm_s16le"});
    row("four channels, timecode on the third", withTimecode(mediaFile("/a.mov", {four}), 1, 2), muted(6, 2),
        movieHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.2", "-map_channel", "0.1.0:0.0",
                                "-map_channel", "0.1.1:0.1", "-map_channel", "0.1.3:0.2", "-acodec",
                                "pcm_s24le"});
    row("mono timecode stream among others is dropped",
        withTimecode(mediaFile("/a.mov", {mono, mono, mono}), 2, 0), muted(0, 2),
        movieHead +
            QStringList{"-map", "0:1", "-acodec", "pcm_s24le", "-map", "0:3", "-acodec", "pcm_s24le"});
    row("other streams keep their codec, unlisted ones become 24 bit",
        withTimecode(mediaFile("/a.mov", {stereo, sound("aac", 2, "stereo"), sound("mp3", 2)}), 1, 0),
        muted(0, 0),
        movieHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.1", "-map_channel", "0.1.0:0.0",
                                "-acodec", "pcm_s16le", "-map", "0:2", "-acodec", "aac", "-map", "0:3",
                                "-acodec", "pcm_s24be"});
    row("an audio type that is not there", mediaFile("/a.mov", {stereo}), muted(5, 7),
        QStringList{"-map", "0:v", "-map", "0:1", "-acodec", "pcm_s16le"});
    row("no timecode found: metadata and channels stay", mediaFile("/a.mov", {stereo}), muted(5, 2),
        QStringList{"-map", "0:v", "-map", "0:1", "-acodec", "pcm_s24le"});
    row("MTS passed through becomes QuickTime", withTimecode(mediaFile("/a.mts", {mono}), 1, 0), muted(0, 2),
        movieHead);

    const QStringList mxfHead{"-map", "0:v", "-map", "-0:d"};
    row("into MXF, PCM 24 bit", withTimecode(mediaFile("/a.mov", {four, mono}), 1, 0), muted(1, 2),
        mxfHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.0", "-map_channel", "0.1.1:0.0",
                              "-map_channel", "0.1.2:0.1", "-map_channel", "0.1.3:0.2", "-acodec",
                              "pcm_s24le", "-map", "0:2", "-acodec", "pcm_s24le"});
    row("into MXF, PCM 16 bit", mediaFile("/a.mov", {mono}), muted(4, 1),
        mxfHead + QStringList{"-map", "0:1", "-acodec", "pcm_s16le"});
    row("into MXF, pass through is 16 bit", mediaFile("/a.mov", {sound("aac", 2)}), muted(4, 0),
        mxfHead + QStringList{"-map", "0:1", "-acodec", "pcm_s16le"});

    const auto mxf = withTimecode(mediaFile("/a.MXF", {sound("pcm_s24le", 2)}), 1, 0);
    row("MXF to MXF keeps all sound", mxf, muted(2, 2), QStringList());
    row("MXF to QuickTime maps the channels", mxf, muted(5, 2),
        movieHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.0", "-map_channel", "0.1.1:0.0",
                                "-acodec", "pcm_s24le"});
    row("MXF passed through maps the channels", mxf, muted(0, 2),
        movieHead + QStringList{"-map", "0:1", "-map_channel", "-0.1.0", "-map_channel", "0.1.1:0.0",
                                "-acodec", "pcm_s24le"});

    const QStringList waveHead{"-write_bext", "1"};
    const auto wave = [](int channels, int timecodeChannel, const QString &layout = {}) {
        return withTimecode(mediaFile("/a.wav", {sound("pcm_s24le", channels, layout)}), 0, timecodeChannel);
    };
    const QStringList stereoWave =
        waveHead + QStringList{"-map", "0:0", "-map_channel", "0.0.1:0.0", "-acodec", "pcm_s24le"};
    for (int type = 0; type <= 8; ++type)
        QTest::addRow("stereo WAV as type %d", type) << wave(2, 0, "stereo") << muted(type, 2) << stereoWave;
    row("four-channel WAV, timecode on the last", wave(4, 3), muted(0, 0),
        waveHead + QStringList{"-map", "0:0", "-map_channel", "0.0.0:0.0", "-map_channel", "0.0.1:0.0",
                               "-map_channel", "0.0.2:0.0", "-acodec", "pcm_s24le"});
    row("mono WAV with nothing but timecode", wave(1, 0), muted(0, 2), waveHead);
    row("WAV without timecode", mediaFile("/a.wav", {sound("pcm_s24le", 2)}), muted(0, 1),
        waveHead + QStringList{"-map", "0:0", "-acodec", "pcm_s16le"});
}

void TestAudioMapping::theTimecodeChannelIsLeftOut()
{
    QFETCH(FileData, file);
    QFETCH(ExportOptions, options);
    QFETCH(QStringList, expected);
    const auto container = outputname::containerFor(file.absoluteFilePath, options.videoType);
    QCOMPARE(audiomapping::arguments(file, options, container), expected);
}

void TestAudioMapping::aClaimOfManyChannelsIsBounded()
{
    for (const char *path : {"/a.mov", "/a.wav"}) {
        const FileData file = mediaFile(path, {sound("pcm_s24le", std::numeric_limits<int>::max())});
        const auto stream = toolarguments::audioStreams(file).constFirst();
        const auto container = outputname::containerFor(path, 5);
        const QStringList arguments =
            audiomapping::arguments(withTimecode(file, stream, 0), muted(5, 1), container);
        QVERIFY(arguments.count("-map_channel") >= 511);
        QVERIFY(arguments.count("-map_channel") <= 512);
    }
}

QTEST_APPLESS_MAIN(TestAudioMapping)
#include "tst_audiomapping.moc"

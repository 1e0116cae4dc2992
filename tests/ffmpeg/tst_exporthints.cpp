// SPDX-License-Identifier: MIT
#include "ffmpeg/exporthints.h"
#include "testkit/fixtures/samplerecords.h"

#include <QTest>

using samplerecords::mediaFile;
using samplerecords::sound;
using samplerecords::withTimecode;

class TestExportHints : public QObject
{
    Q_OBJECT

private slots:
    void theMutedChannelIsTheTruePlace_data();
    void theMutedChannelIsTheTruePlace();
    void theTimecodesRateAccompaniesExports_data();
    void theTimecodesRateAccompaniesExports();
    void theChosenSoundAccompaniesExports_data();
    void theChosenSoundAccompaniesExports();
    void theSampleRateOfATimecodeTakenOverAccompaniesExports();
    void theSourceIsDescribedInTheProbesWords();
    void nothingIsSaidOfWhatIsNotKnown_data();
    void nothingIsSaidOfWhatIsNotKnown();
    void anEarlierHintNeverStays();
};

namespace
{

ExportOptions muting(bool mute)
{
    ExportOptions options;
    options.muteAudioTC = mute;
    return options;
}

} // namespace

void TestExportHints::theMutedChannelIsTheTruePlace_data()
{
    QTest::addColumn<FileData>("file");
    QTest::addColumn<bool>("mute");
    QTest::addColumn<QString>("expected");

    const auto stereo = mediaFile("/a.mov", {sound("pcm_s16le", 2), sound("pcm_s16le", 2, "stereo")});
    QTest::newRow("stereo is not turned round") << withTimecode(stereo, 2, 0) << true << "2.0";
    QTest::newRow("right channel") << withTimecode(stereo, 2, 1) << true << "2.1";
    QTest::newRow("not muted") << withTimecode(stereo, 2, 1) << false << QString();
    QTest::newRow("no timecode found") << stereo << true << QString();

    FileData lost = withTimecode(stereo, 2, 1);
    lost.hasAudioTC = false;
    QTest::newRow("still singled out by the arguments") << lost << true << "2.1";

    FileData linked = stereo;
    linked.setLinkedAudioTC(3, "10:00:00:00", {});
    QTest::newRow("timecode of a sibling file") << linked << true << QString();
}

void TestExportHints::theMutedChannelIsTheTruePlace()
{
    QFETCH(FileData, file);
    QFETCH(bool, mute);
    QFETCH(QString, expected);
    QCOMPARE(exporthints::mutedChannel(file, muting(mute)), expected);
}

void TestExportHints::theTimecodesRateAccompaniesExports_data()
{
    QTest::addColumn<bool>("found");
    QTest::addColumn<int>("baseRate"); // [frames per second]
    QTest::addColumn<bool>("ntsc");
    QTest::addColumn<QString>("expected");
    QTest::newRow("25") << true << 25 << false << "25/1";
    QTest::newRow("23.976") << true << 24 << true << "24000/1001";
    QTest::newRow("29.97") << true << 30 << true << "30000/1001";
    QTest::newRow("a reading without a rate") << true << 0 << true << QString();
    QTest::newRow("no timecode") << false << 25 << false << QString();
}

void TestExportHints::theTimecodesRateAccompaniesExports()
{
    QFETCH(bool, found);
    QFETCH(int, baseRate);
    QFETCH(bool, ntsc);
    FileData file;
    file.hasAudioTC = found;
    file.audioTCResult = {{"FrameRateBaseFound", baseRate}, {"NTSC", ntsc}};
    QTEST(exporthints::timecodeRate(file), "expected");
}

void TestExportHints::theChosenSoundAccompaniesExports_data()
{
    QTest::addColumn<int>("audioType");
    QTest::addColumn<QString>("expected");
    QTest::newRow("pass trough") << 0 << "pass";
    QTest::newRow("PCM 16 bit") << 1 << "pcm16";
    QTest::newRow("PCM 24 bit") << 2 << "pcm24";
    QTest::newRow("any other code") << 7 << "pcm16";
}

void TestExportHints::theChosenSoundAccompaniesExports()
{
    QFETCH(int, audioType);
    ExportOptions options;
    options.audioType = audioType;
    QTEST(exporthints::soundChoice(options), "expected");
}

void TestExportHints::theSampleRateOfATimecodeTakenOverAccompaniesExports()
{
    FileData file = mediaFile("/a.wav", {sound("pcm_s24le", 2)});
    QCOMPARE(exporthints::timecodeSampleRate(file), QString());
    file.setLinkedAudioTC(3, "10:00:00:00", {{"SamplesSinceMidnight", 5}, {"SampleRate", 44100}});
    QCOMPARE(exporthints::timecodeSampleRate(file), QString("44100"));
    file.audioTCResult = QJsonObject{{"SamplesSinceMidnight", 5}};
    QCOMPARE(exporthints::timecodeSampleRate(file), QString());
}

void TestExportHints::theSourceIsDescribedInTheProbesWords()
{
    FileData file;
    file.streams = QJsonArray{
        QJsonObject{
            {"index", 0},
            {"codec_type", "video"},
            {"codec_name", "h264"},
            {"r_frame_rate", "50/1"},
            {"avg_frame_rate", "25/1"},
            {"start_time", "1.400000"},
            {"duration", "2.000000"},
            {"width", 1920},
            {"height", 1080},
            {"sample_aspect_ratio", "1:1"},
            {"pix_fmt", "yuv420p"},
            {"color_range", "tv"},
            {"color_space", "bt709"},
            {"color_primaries", "bt709"},
            {"field_order", "tt"},
            {"bit_rate", "5000000"},
            {"side_data_list", QJsonArray{QJsonObject{{"rotation", -90}}}},
            {"disposition", QJsonObject{{"default", 1}, {"attached_pic", 0}}},
            {"tags", QJsonObject{{"timecode", "10:11:12:13"}, {"handler_name", "x"}, {"reel_name", "A001"}}}},
        QJsonObject{{"codec_type", "audio"},
                    {"codec_name", "pcm_s24le"},
                    {"channels", 4},
                    {"sample_rate", "48000"},
                    {"channel_layout", "4.0\nindex=7"}},
    };
    file.format = {{"start_time", "1.400000"},
                   {"duration", "2.040000"},
                   {"size", "5000"},
                   {"tags", QJsonObject{{"creation_time", "2024-05-03T09:00:00Z"},
                                        {"timecode", "01:02:03:04"},
                                        {"title", "a note\nindex=9"}}}};
    QCOMPARE(
        exporthints::sourceDescription(file),
        QString("index=0\ncodec_type=video\ncodec_name=h264\nr_frame_rate=50/1\navg_frame_rate=25/1\n"
                "start_time=1.400000\nduration=2.000000\nwidth=1920\nheight=1080\nsample_aspect_ratio=1:1\n"
                "pix_fmt=yuv420p\ncolor_range=tv\ncolor_space=bt709\ncolor_primaries=bt709\n"
                "field_order=tt\nbit_rate=5000000\nrotation=-90\nDISPOSITION:attached_pic=0\n"
                "TAG:timecode=10:11:12:13\nTAG:reel_name=A001\n"
                "index=1\ncodec_type=audio\ncodec_name=pcm_s24le\nchannels=4\nsample_rate=48000\n"
                "channel_layout=4.0 index=7\n"
                "[FORMAT]\nstart_time=1.400000\nduration=2.040000\nTAG:creation_time=2024-05-03T09:00:00Z\n"
                "TAG:timecode=01:02:03:04\nTAG:title=...\n"));
}

void TestExportHints::nothingIsSaidOfWhatIsNotKnown_data()
{
    QTest::addColumn<FileData>("file");
    QTest::newRow("no stream") << mediaFile("/a.wav", {});
    QTest::newRow("more streams than a variable can hold")
        << mediaFile("/a.mov", QVector<QJsonObject>(3000, sound("pcm_s24le", 1)));
}

void TestExportHints::nothingIsSaidOfWhatIsNotKnown()
{
    QFETCH(FileData, file);
    QCOMPARE(exporthints::sourceDescription(file), QString());
}

void TestExportHints::anEarlierHintNeverStays()
{
    QProcessEnvironment environment;
    for (const char *variable :
         {"OSTREL_TIMECODE_CHANNEL", "OSTREL_TIMECODE_RATE", "OSTREL_TIMECODE_SAMPLE_RATE", "OSTREL_PICTURE",
          "OSTREL_SOUND", "OSTREL_BATCH_SIZE", "OSTREL_SOURCE"})
        environment.insert(variable, "old");
    environment.insert("PATH", "/bin");
    exporthints::insertInto(environment, FileData(), muting(true));
    QCOMPARE(environment.keys(), (QStringList{"OSTREL_PICTURE", "OSTREL_SOUND", "PATH"}));
    QCOMPARE(environment.value("OSTREL_PICTURE"), QString("pass"));
    QCOMPARE(environment.value("OSTREL_SOUND"), QString("pass"));

    const FileData file = withTimecode(mediaFile("/a.mov", {sound("pcm_s16le", 2)}), 1, 0);
    exporthints::insertInto(environment, file, muting(true), 60);
    QCOMPARE(environment.value("OSTREL_BATCH_SIZE"), QString("60"));
    QCOMPARE(environment.value("OSTREL_TIMECODE_CHANNEL"), QString("1.0"));
    QCOMPARE(environment.value("OSTREL_TIMECODE_RATE"), QString("25/1"));
    QCOMPARE(environment.value("OSTREL_SOURCE"), exporthints::sourceDescription(file));
}

QTEST_APPLESS_MAIN(TestExportHints)
#include "tst_exporthints.moc"

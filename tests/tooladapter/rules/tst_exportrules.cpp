// SPDX-License-Identifier: MIT
#include "testkit/fixtures/row.h"
#include "tests/tooladapter/rules/words.h"
#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/exportrules.h"
#include "tooladapter/rules/refusal.h"

#include <QTest>

#include <algorithm>

using namespace tooladapter;

namespace
{

/// A source written as one text, a word for each stream: "video:RATE[:AVERAGE]", "cover", "data",
/// "audio:CODEC:CHANNELS[:LAYOUT[:RATE]]".
Source sourceOf(const QString &text)
{
    Source source;
    const QStringList words = text.split(' ', Qt::SkipEmptyParts);
    for (const QString &word : words) {
        const QStringList parts = word.split(':');
        const auto part = [&parts](int index) { return parts.value(index).toStdString(); };
        Stream stream;
        if (parts.first() == "audio") {
            stream.kind = Stream::Kind::Audio;
            stream.codec = part(1);
            stream.channels = parts.at(2).toInt();
            stream.layout = part(3);
            stream.sampleRate = parts.value(4).toInt();
        } else if (parts.first() != "data") {
            stream.kind = Stream::Kind::Picture;
            stream.isAttachedPicture = parts.first() == "cover";
            stream.width = 1920;
            stream.height = 1080;
            stream.colorSpace = "bt709";
            stream.fieldOrder = "progressive";
            stream.baseRate = FrameRate::fromText(part(1));
            stream.averageRate = parts.size() > 2 ? FrameRate::fromText(part(2)) : stream.baseRate;
        }
        source.streams.push_back(stream);
    }
    return source;
}

/// The hints in \a text: words "VARIABLE=value", the variables without "OSTREL_".
Hints hintsOf(const QString &text)
{
    const QStringList words = text.split(' ', Qt::SkipEmptyParts);
    return hintsFrom([&words](const char *variable) {
        for (const QString &word : words) {
            if ("OSTREL_" + word.section('=', 0, 0) == variable)
                return word.section('=', 1).toStdString();
        }
        return std::string();
    });
}

Export exportFor(const QString &words, const QString &source, const QString &hintWords = {})
{
    const auto list = parseArguments(wordsOf(words));
    if (!list || jobOf(*list) != Job::Export)
        qFatal("\"%s\" is no export", qPrintable(words));
    const Source facts = sourceOf(source);
    const Hints hints = hintsOf(hintWords);
    return exportOf(planOf(*list, facts, hints), facts, hints);
}

/// The words of \a job but those about the notes of the file, which have tests of their own.
QString wordsWithoutTags(const Export &job)
{
    QString words = textOf(job.arguments);
    for (const char *tag : {"-map_metadata 0 ", "-metadata:s timecode= ", "-metadata timecode= "})
        words.remove(tag);
    return words;
}

bool isRefused(const QString &output, const Source &source)
{
    const auto list = parseArguments(wordsOf("-y -i in.mov -acodec pcm_s24le " + output));
    try {
        exportOf(planOf(*list, source), source);
    } catch (const Refusal &) {
        return true;
    }
    return false;
}

const char coded25[] = "-vcodec dnxhd -b:v 36M -pix_fmt yuv422p -s 1920x1080 -r 25/1";

} // namespace

class TestExportRules : public QObject
{
    Q_OBJECT

private slots:
    void onlyTheTimecodeChannelGoes_data();
    void onlyTheTimecodeChannelGoes();
    void everyStreamIsTakenWhereNoneIsNamed_data();
    void everyStreamIsTakenWhereNoneIsNamed();
    void everyStreamHasItsOwnCodec_data();
    void everyStreamHasItsOwnCodec();
    void soundThatPassesThroughKeepsItsDepth_data();
    void soundThatPassesThroughKeepsItsDepth();
    void theTimeReferenceCountsTheFilesOwnSamples_data();
    void theTimeReferenceCountsTheFilesOwnSamples();
    void soundLiesBesideThePicture_data();
    void soundLiesBesideThePicture();
    void soundThatBeginsTooLateForMxfIsRefused();
    void lossySoundIsCodedAgainAtAGoodRate_data();
    void lossySoundIsCodedAgainAtAGoodRate();
    void whatTheListCouldNotKnowIsCompleted_data();
    void whatTheListCouldNotKnowIsCompleted();
    void aBatchSharesTheProcessors_data();
    void aBatchSharesTheProcessors();
    void thePictureKeepsItsRate_data();
    void thePictureKeepsItsRate();
    void filesInOddFoldersAreFiles_data();
    void filesInOddFoldersAreFiles();
    void whatCannotBeRightIsRefused_data();
    void whatCannotBeRightIsRefused();
    void theJobTellsWhatTheFileMustHold();
};

void TestExportRules::onlyTheTimecodeChannelGoes_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("corrected");
    const QString picture = "-map 0:v -map_metadata -1 ";
    const QString head = "-y -xerror -i in.mov -map 0:0 ";
    const QString pair = picture + "-map 0:1 -map_channel -0.1.1 -map_channel 0.1.0:0.0 -acodec pcm_s24le";
    const QString tail = " -vcodec copy out.MOV";
    row("stereo, timecode on the left", "video:25/1 audio:pcm_s24le:2:stereo", "1.0", pair,
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c1" + tail);
    row("two channels without a layout, timecode on the right", "video:25/1 audio:pcm_s24le:2", "1.1", pair,
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c0" + tail);
    row("stereo, the application named no channel", "video:25/1 audio:pcm_s24le:2:stereo", "", pair,
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c1" + tail);
    row("big-endian pair, the application named no channel", "video:25/1 audio:pcm_s16be:2", "", pair,
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c1" + tail);
    row("two channels without a layout, the application named no channel",
        "video:25/1 audio:pcm_s24le:2:unknown", "", pair,
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c0" + tail);
    row("the application knows a channel of another stream", "video:25/1 audio:pcm_s24le:2:stereo", "2.1",
        pair, head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c1" + tail);
    row("three channels", "video:25/1 audio:pcm_s16le:3", "1.0",
        picture +
            "-map 0:1 -map_channel -0.1.0 -map_channel 0.1.1:0.0 -map_channel 0.1.2:0.1 -acodec pcm_s16le",
        head + "-map 0:1 -c:a:0 pcm_s16le -filter:a:0 pan=2C|c0=c1|c1=c2" + tail);
    row("four channels, the third carries timecode", "video:25/1 audio:pcm_s24le:4:4.0", "1.2",
        picture + "-map 0:1 -map_channel -0.1.2 -map_channel 0.1.0:0.0 -map_channel 0.1.1:0.1 "
                  "-map_channel 0.1.3:0.2 -acodec pcm_s24le",
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=3C|c0=c0|c1=c1|c2=c3" + tail);
    row("the second of two streams", "video:25/1 audio:pcm_s24le:2:stereo audio:pcm_s16le:2:stereo", "2.1",
        picture + "-map 0:1 -acodec pcm_s24le -map 0:2 -map_channel -0.2.0 -map_channel 0.2.1:0.0 -acodec "
                  "pcm_s16le",
        head + "-map 0:1 -c:a:0 pcm_s24le -map 0:2 -c:a:1 pcm_s16le -filter:a:1 pan=mono|c0=c0" + tail);
    row("surround AAC keeps a layout that AAC has", "video:25/1 audio:aac:6:5.1", "1.5",
        picture + "-map 0:1 -map_channel -0.1.5 -map_channel 0.1.0:0.0 -map_channel 0.1.1:0.1 "
                  "-map_channel 0.1.2:0.2 -map_channel 0.1.3:0.3 -map_channel 0.1.4:0.4 -acodec aac",
        head + "-map 0:1 -c:a:0 aac -b:a:0 960000 -filter:a:0 pan=5.0|c0=c0|c1=c1|c2=c2|c3=c3|c4=c4" + tail);
    row("more channels than AAC has layouts for become PCM", "video:25/1 audio:aac:8:7.1", "1.0",
        picture + "-map 0:1 -map_channel -0.1.0 -map_channel 0.1.1:0.0 -acodec aac",
        head + "-map 0:1 -c:a:0 pcm_s24le -filter:a:0 pan=7C|c0=c1|c1=c2|c2=c3|c3=c4|c4=c5|c5=c6|c6=c7" +
            tail);
    row("single channels go without a word", "video:25/1 audio:pcm_s24le:1 audio:pcm_s24le:1", "2.0",
        picture + "-map 0:1 -acodec pcm_s24le", head + "-map 0:1 -c:a:0 pcm_s24le" + tail);
}

void TestExportRules::onlyTheTimecodeChannelGoes()
{
    QFETCH(QString, source);
    QFETCH(QString, channel);
    QFETCH(QString, given);
    QFETCH(QString, corrected);
    const Export job =
        exportFor("-y -i in.mov " + given + " -vcodec copy out.MOV", source, "TIMECODE_CHANNEL=" + channel);
    QCOMPARE(wordsWithoutTags(job), corrected);
}

void TestExportRules::everyStreamIsTakenWhereNoneIsNamed_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("corrected");
    row("four tracks", "video:25/1 audio:pcm_s24le:1 audio:pcm_s24le:1 audio:pcm_s24le:1 audio:pcm_s24le:1",
        "-y -i in.mov -acodec pcm_s16le -vcodec copy out.MOV",
        "-y -xerror -i in.mov -map 0:0 -map 0:1 -c:a:0 pcm_s16le -map 0:2 -c:a:1 pcm_s16le -map 0:3 "
        "-c:a:2 "
        "pcm_s16le -map 0:4 -c:a:3 pcm_s16le -vcodec copy out.MOV");
    row("from MXF to MXF without a codec, each keeps its depth",
        "video:25/1 audio:pcm_s24le:1 audio:pcm_s16le:1",
        "-y -i in.mxf -vcodec mpeg2video -b:v 50M -pix_fmt yuv422p -s 1920x1080 out.MXF",
        "-y -i in.mxf -map 0:0 -map 0:1 -c:a:0 pcm_s24le -map 0:2 -c:a:1 pcm_s16le -ar 48000 -vcodec "
        "mpeg2video "
        "-b:v 50M -pix_fmt yuv422p -s 1920x1080 out.MXF");
    row("cover images, subtitles and old timecode stay behind",
        "cover data video:25/1 video:50/1 audio:aac:2:stereo data",
        "-y -i in.mp4 -acodec pcm_s16le -vcodec copy out.MOV",
        "-y -xerror -i in.mp4 -map 0:2 -map 0:4 -c:a:0 pcm_s16le -vcodec copy out.MOV");
    row("the first picture of several that are named together", "video:25/1 audio:aac:2:stereo cover",
        "-y -i in.mp4 -map 0:v -map 0:1 -acodec pcm_s16le -vcodec copy out.MOV",
        "-y -xerror -i in.mp4 -map 0:0 -map 0:1 -c:a:0 pcm_s16le -vcodec copy out.MOV");
    row("sound alone asks for no picture", "audio:pcm_s24le:1 audio:pcm_s24le:1",
        "-y -i in.mov -map 0:v -map 0:1 -acodec pcm_s24le -vcodec copy out.MOV",
        "-y -xerror -i in.mov -map 0:1 -c:a:0 pcm_s24le out.MOV");
    row("sound alone keeps its timecode as a tag", "audio:pcm_s24le:1 audio:pcm_s24le:1",
        "-y -i in.mov -map 0:v -map 0:1 -acodec pcm_s24le -vcodec copy -timecode 10:11:12:13 -r 25 out.MOV",
        "-y -xerror -i in.mov -map 0:1 -c:a:0 pcm_s24le -movflags use_metadata_tags -timecode 10:11:12:13 "
        "out.MOV");
    row("picture alone", "video:25/1", "-y -i in.mov -vcodec copy out.MOV",
        "-y -xerror -i in.mov -map 0:0 -vcodec copy out.MOV");
    row("WAV", "audio:pcm_s24le:8",
        "-y -i in.wav -write_bext 1 -acodec pcm_s24le -metadata time_reference=5 out.WAV",
        "-y -xerror -i in.wav -map 0:0 -c:a:0 pcm_s24le -rf64 auto -write_bext 1 -metadata "
        "time_reference=5 out.WAV");
}

void TestExportRules::everyStreamIsTakenWhereNoneIsNamed()
{
    QFETCH(QString, source);
    QFETCH(QString, given);
    QFETCH(QString, corrected);
    QCOMPARE(wordsWithoutTags(exportFor(given, source)), corrected);
}

void TestExportRules::everyStreamHasItsOwnCodec_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("corrected");
    const QString two = "video:25/1 audio:pcm_s24le:1 audio:pcm_s16le:1";
    const QString named = "-map 0:v -map 0:1 -acodec %1 -map 0:2 -acodec %2";
    const QString corrected = "-map 0:0 -map 0:1 -c:a:0 %1 -map 0:2 -c:a:1 %2";
    row("QuickTime keeps what is asked", two, named.arg("pcm_s24le", "pcm_s16be") + " out.MOV",
        corrected.arg("pcm_s24le", "pcm_s16be") + " out.MOV");
    row("MXF takes little-endian of the same depth", two,
        named.arg("pcm_s24be", "pcm_s16be") + " -map -0:d out.MXF",
        corrected.arg("pcm_s24le", "pcm_s16le") + " -ar 48000 out.MXF");
    row("MXF takes lossy sound and deeper PCM as 24 bit", two, named.arg("aac", "pcm_f32le") + " out.MXF",
        corrected.arg("pcm_s24le", "pcm_s24le") + " -ar 48000 out.MXF");
    row("MXF takes eight bits as sixteen", two, named.arg("pcm_u8", "pcm_s8") + " out.MXF",
        corrected.arg("pcm_s16le", "pcm_s16le") + " -ar 48000 out.MXF");
    row("WAV takes little-endian", "audio:mp3:2:stereo",
        "-write_bext 1 -map 0:0 -map_channel 0.0.1:0.0 -acodec pcm_s24be out.WAV",
        "-map 0:0 -c:a:0 pcm_s24le -filter:a:0 pan=mono|c0=c1 -rf64 auto -write_bext 1 out.WAV");
    row("lossy sound is copied rather than coded again",
        "video:25/1 audio:aac:2:stereo audio:ac3:6:5.1(side)", named.arg("aac", "ac3") + " out.MOV",
        corrected.arg("copy", "copy") + " out.MOV");
    row("one codec for all that is none of the two PCM types passes each stream through",
        "video:25/1 audio:aac:2:stereo audio:pcm_s24be:2", "-acodec aac out.MOV",
        corrected.arg("copy", "pcm_s24be") + " out.MOV");
    row("one PCM type for all is obeyed", "video:25/1 audio:aac:2:stereo audio:pcm_s24be:2",
        "-acodec pcm_s16le out.MOV", corrected.arg("pcm_s16le", "pcm_s16le") + " out.MOV");
}

void TestExportRules::everyStreamHasItsOwnCodec()
{
    QFETCH(QString, source);
    QFETCH(QString, given);
    QFETCH(QString, corrected);
    QCOMPARE(wordsWithoutTags(exportFor("-y -i in " + given, source)).remove("-xerror "),
             "-y -i in " + corrected);
}

void TestExportRules::soundThatPassesThroughKeepsItsDepth_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("sound");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("codecs"); // of the written streams
    const QString depths = "video:25/1 audio:pcm_s16le:2 audio:pcm_s24le:1";
    row("the widest stream is the shallow one", depths, "pass", "-acodec pcm_s16le out.MOV",
        "pcm_s16le pcm_s24le");
    row("into MXF", depths, "pass", "-acodec pcm_s16le out.MXF", "pcm_s16le pcm_s24le");
    row("into MXF, whose list says 16 bit for all", depths, "pass",
        "-map 0:v -map -0:d -map 0:1 -acodec pcm_s16le -map 0:2 -acodec pcm_s16le out.MXF",
        "pcm_s16le pcm_s24le");
    row("lossy sound next to PCM", "video:25/1 audio:pcm_s16le:2 audio:aac:1", "pass",
        "-acodec pcm_s16le out.MOV", "pcm_s16le copy");
    row("lossy sound into MXF", "video:25/1 audio:aac:2", "pass",
        "-map 0:v -map -0:d -map 0:1 -acodec pcm_s16le out.MXF", "pcm_s24le");
    row("PCM that only a camera's own container holds", "video:25/1 audio:pcm_bluray:2", "pass",
        "-acodec pcm_s24be out.MOV", "pcm_s24be");
    row("16 bit is chosen", depths, "pcm16", "-acodec pcm_s16le out.MOV", "pcm_s16le pcm_s16le");
    row("16 bit is chosen for MXF", depths, "pcm16",
        "-map 0:v -map -0:d -map 0:1 -acodec pcm_s16le -map 0:2 -acodec pcm_s16le out.MXF",
        "pcm_s16le pcm_s16le");
}

void TestExportRules::soundThatPassesThroughKeepsItsDepth()
{
    QFETCH(QString, source);
    QFETCH(QString, sound);
    QFETCH(QString, given);
    QFETCH(QString, codecs);
    const QStringList words =
        textOf(exportFor("-y -i in.mov " + given, source, "SOUND=" + sound).arguments).split(' ');
    QStringList written;
    for (int i = 0; i + 1 < words.size(); ++i) {
        if (words.at(i).startsWith("-c:a:"))
            written += words.at(i + 1);
    }
    QCOMPARE(written.join(' '), codecs);
}

void TestExportRules::theTimeReferenceCountsTheFilesOwnSamples_data()
{
    QTest::addColumn<QString>("counted"); // [samples/s] empty: the file's own
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("written");
    row("its own timecode", "", "48000", "1728000001", "1728000001");
    row("a sibling of the same rate", "48000", "48000", "1728000001", "1728000001");
    row("a sibling of half the rate", "48000", "96000", "1728000001", "3456000002");
    row("a sibling of twice the rate", "96000", "48000", "3456000001", "1728000001");
    row("44.1 and 48 kHz", "44100", "48000", "1587600000", "1728000000");
    row("the nearest sample", "44100", "48000", "1", "1");
    row("what is nearer to midnight than to the day's last sample", "96000", "48000", "8294399999", "0");
    row("the file does not state its rate", "44100", "0", "1587600000", "1587600000");
    row("a rate that cannot be is none", "0", "48000", "1587600000", "1587600000");
}

void TestExportRules::theTimeReferenceCountsTheFilesOwnSamples()
{
    QFETCH(QString, counted);
    QFETCH(QString, own);
    QFETCH(QString, given);
    QFETCH(QString, written);
    const QString words =
        textOf(exportFor("-y -i in.wav -write_bext 1 -acodec pcm_s24le -metadata time_reference=" + given +
                             " -metadata comment=sSPEED=025.000-ND out.WAV",
                         "audio:pcm_s24le:1::" + own, "TIMECODE_SAMPLE_RATE=" + counted)
                   .arguments);
    QVERIFY2(words.contains("time_reference=" + written + " -metadata comment=sSPEED=025.000-ND"),
             qPrintable(words));
}

void TestExportRules::soundLiesBesideThePicture_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<double>("start"); // [s] of the sound; the picture's is 0
    QTest::addColumn<double>("end");   // [s] of the sound; the picture's is 5; 0: not known
    QTest::addColumn<QString>("filter");
    const QString all = "-map 0:1 -acodec pcm_s24le ";
    const QString muted =
        "-map 0:1 -map_channel -0.1.2 -map_channel 0.1.0:0.0 -map_channel 0.1.1:0.1 -acodec pcm_s24le ";
    row("MXF, as long as the picture", all + "out.MXF", 0.0, 5.0, "");
    row("MXF, begins late", all + "out.MXF", 0.4, 5.0, "-filter:a:0 adelay=400.000:all=1");
    row("MXF, begins late without the timecode", muted + "out.MXF", 0.4, 5.0,
        "-filter:a:0 pan=2C|c0=c0|c1=c1,adelay=400.000:all=1");
    row("MXF, ends early", all + "out.MXF", 0.0, 4.9, "-filter:a:0 apad=pad_dur=0.200");
    row("MXF, begins late and ends early", all + "out.MXF", 0.04, 4.5,
        "-filter:a:0 adelay=40.000:all=1,apad=pad_dur=0.600");
    row("MXF, ends late", all + "out.MXF", 0.0, 5.5, "");
    row("MXF, its end is not known", all + "out.MXF", 0.0, 0.0, "");
    row("MXF, ends more than ten seconds early", muted + "out.MXF", -6.0, -5.5,
        "-filter:a:0 pan=2C|c0=c0|c1=c1");
    row("QuickTime notes where a stream begins and ends", all + "out.MOV", 0.4, 4.0, "");
}

void TestExportRules::soundLiesBesideThePicture()
{
    QFETCH(QString, given);
    QFETCH(double, start);
    QFETCH(double, end);
    QFETCH(QString, filter);
    Source source = sourceOf("video:25/1 audio:pcm_s24le:3");
    source.duration = 5.0;
    source.streams[0].start = 0.0;
    source.streams[0].duration = 5.0;
    source.streams[1].start = start;
    source.streams[1].duration = end == 0.0 ? 0.0 : end - start;
    const auto list = parseArguments(wordsOf("-y -i in.mov -map 0:v " + given));
    QVERIFY(list.has_value());
    const QString corrected = textOf(exportOf(planOf(*list, source), source).arguments);
    QCOMPARE(corrected.section(" -filter", 1, 1, QString::SectionIncludeLeadingSep).section(' ', 1, 2),
             filter);
}

void TestExportRules::soundThatBeginsTooLateForMxfIsRefused()
{
    Source source = sourceOf("video:25/1 audio:pcm_s24le:1");
    source.streams[0].start = 0.0;
    source.streams[1].start = 60.0;
    QVERIFY(isRefused("out.MXF", source));
    QVERIFY(!isRefused("out.MOV", source));
}

void TestExportRules::lossySoundIsCodedAgainAtAGoodRate_data()
{
    QTest::addColumn<QString>("codec");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("sourceRate"); // [bit/s]
    QTest::addColumn<int>("rate");       // [bit/s]
    row("AAC, at least 128 kbit/s a channel", "aac", 2, 96'000, 128'000);
    row("AAC, at least the source's", "aac", 2, 317'001, 158'501);
    row("AAC, all kept channels", "aac", 4, 800'000, 600'000);
    row("AAC that does not state its rate", "aac", 2, 0, 192'000);
    row("AC-3 at one of its rates", "ac3", 2, 448'000, 224'000);
    row("AC-3 at the next higher one", "ac3", 4, 448'000, 384'000);
    row("AC-3 at its highest", "ac3", 6, 1'000'000, 640'000);
}

void TestExportRules::lossySoundIsCodedAgainAtAGoodRate()
{
    QFETCH(QString, codec);
    QFETCH(int, channels);
    QFETCH(int, sourceRate);
    QFETCH(int, rate);
    Source source = sourceOf(QString("video:25/1 audio:%1:%2").arg(codec).arg(channels));
    source.streams[1].bitRate = sourceRate;
    const auto list = parseArguments(
        wordsOf("-y -i in.mp4 -map 0:v -map 0:1 -map_channel -0.1.0 -acodec " + codec + " out.MOV"));
    const Hints hints = hintsOf("TIMECODE_CHANNEL=1.0");
    const QString words = textOf(exportOf(planOf(*list, source, hints), source, hints).arguments);
    QVERIFY2(words.contains(QString("-c:a:0 %1 -b:a:0 %2 ").arg(codec).arg(rate)), qPrintable(words));
}

void TestExportRules::whatTheListCouldNotKnowIsCompleted_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("hints");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("written");
    const QString two = "video:25/1 audio:pcm_s16le:1 audio:pcm_s24le:1";
    const QString sounds = "-map 0:0 -map 0:1 -c:a:0 %1 -map 0:2 -c:a:1 %2 ";
    const QString medium = "-vcodec dnxhd -b:v 120M -pix_fmt yuv422p -s 1920x1080 -r 25/1 ";
    row("without timecode, the sound as it is", two, "PICTURE=pass SOUND=pass",
        "-map 0:v -vcodec copy out.MOV", sounds.arg("pcm_s16le", "pcm_s24le") + "-vcodec copy out.MOV");
    row("without timecode, as 24 bit", two, "PICTURE=dnxhd-115 SOUND=pcm24", "-map 0:v out.MOV",
        sounds.arg("pcm_s24le", "pcm_s24le") + medium + "out.MOV");
    row("without timecode, as 16 bit into MXF", two, "PICTURE=dnxhd-115 SOUND=pcm16",
        "-map 0:v -map -0:d out.MXF",
        sounds.arg("pcm_s16le", "pcm_s16le") + "-ar 48000 " + medium + "out.MXF");
    row("with timecode", two, "PICTURE=dnxhd-115 SOUND=pass", "out.MOV",
        sounds.arg("pcm_s16le", "pcm_s24le") + medium + "out.MOV");
    row("a sound file", "audio:pcm_s24le:2", "PICTURE=pass SOUND=pass", "-write_bext 1 out.WAV",
        "-map 0:0 -c:a:0 pcm_s24le -rf64 auto -write_bext 1 out.WAV");
    row("a sound file as 16 bit", "audio:pcm_s24le:2", "SOUND=pcm16", "-write_bext 1 out.WAV",
        "-map 0:0 -c:a:0 pcm_s16le -rf64 auto -write_bext 1 out.WAV");
    row("the timecode's own stream stays out where it is known", "video:25/1 audio:pcm_s16le:1",
        "PICTURE=pass SOUND=pass TIMECODE_CHANNEL=1.0", "-map 0:v -vcodec copy out.MOV",
        "-map 0:0 -vcodec copy out.MOV");
    row("a rate that DNxHD does not have", "video:50/1", "PICTURE=dnxhd-36", "out.MOV",
        "-map 0:0 -vcodec dnxhd -profile:v dnxhr_lb -pix_fmt yuv422p out.MOV");
}

void TestExportRules::whatTheListCouldNotKnowIsCompleted()
{
    QFETCH(QString, source);
    QFETCH(QString, hints);
    QFETCH(QString, given);
    QFETCH(QString, written);
    QCOMPARE(wordsWithoutTags(exportFor("-y -i in " + given, source, hints)).remove("-xerror "),
             "-y -i in " + written);
}

void TestExportRules::aBatchSharesTheProcessors_data()
{
    QTest::addColumn<int>("batchSize");
    QTest::addColumn<int>("processors");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("threads"); // of the filters, the decoder and the coder
    const QString coded = "-vcodec mpeg2video";
    row("one file", 1, 16, coded, QString());
    row("two files", 2, 16, coded, "8");
    row("more files than processors", 17, 16, coded, "1");
    row("more files than run together", 1000, 96, coded, "2");
    row("one processor", 5, 1, coded, QString());
    row("a batch of unknown size", 0, 16, coded, QString());
    row("a copy", 17, 16, "-vcodec copy", QString());
}

void TestExportRules::aBatchSharesTheProcessors()
{
    QFETCH(int, batchSize);
    QFETCH(int, processors);
    QFETCH(QString, given);
    QFETCH(QString, threads);
    Hints hints = hintsOf("BATCH_SIZE=" + QString::number(batchSize));
    hints.processors = processors;
    const Source source = sourceOf("video:25/1");
    const auto list = parseArguments(wordsOf("-y -i in.mov " + given + " out.MXF"));
    const QString words = textOf(exportOf(planOf(*list, source, hints), source, hints).arguments);
    const QString limited =
        threads.isEmpty() ? QString() : QString("-filter_threads %1 -threads %1 ").arg(threads);
    const QString coder = threads.isEmpty() ? QString() : "-threads " + threads + ' ';
    QVERIFY2(words.startsWith("-y " + limited + "-i in.mov") || words.startsWith("-y -xerror -i in.mov"),
             qPrintable(words));
    QVERIFY2(words.endsWith(given + ' ' + coder + "out.MXF"), qPrintable(words));
    const bool takesTurns = batchSize > 0 && given != "-vcodec copy";
    QCOMPARE(exportOf(planOf(*list, source, hints), source, hints).together,
             takesTurns ? std::max(4, processors) : 0);
}

void TestExportRules::thePictureKeepsItsRate_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<QString>("timecodeRate");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("corrected");
    const auto row = [](const char *name, const char *rate, const QString &given, const QString &corrected,
                        const char *timecodeRate = "") { ::row(name, rate, timecodeRate, given, corrected); };
    row("the reader's rate goes", "25/1", "-vcodec copy -timecode 10:11:12:13 -r 25",
        "-vcodec copy -timecode 10:11:12:13");
    row("25 counted at 50", "50/1", "-vcodec copy -timecode 10:11:12:13 -r 25",
        "-vcodec copy -timecode 10:11:12:26");
    row("30 counted at 59.94", "60000/1001", "-vcodec copy -timecode 10:11:12:29 -r 30000/1001",
        "-vcodec copy -timecode 10:11:12:58");
    row("drop-frame counted at 59.94", "60000/1001", "-vcodec copy -timecode 10:11:00;02 -r 30000/1001",
        "-vcodec copy -timecode 10:11:00;04");
    row("drop-frame stays at 29.97", "30000/1001", "-vcodec copy -timecode 10:11:12;13 -r 30000/1001",
        "-vcodec copy -timecode 10:11:12;13");
    row("24 counted at 23.976", "24000/1001", "-vcodec copy -timecode 10:11:12:23 -r 24",
        "-vcodec copy -timecode 10:11:12:23");
    row("25 counted at 24", "24/1", "-vcodec copy -timecode 10:11:12:24 -r 25",
        "-vcodec copy -timecode 10:11:12:23");
    row("30 counted at 25", "25/1", "-vcodec copy -timecode 10:11:12:29 -r 30000/1001",
        "-vcodec copy -timecode 10:11:12:24");
    row("MPEG-2 runs at the picture's rate", "50/1", "-vcodec mpeg2video -timecode 10:11:12:13 -r 25",
        "-vcodec mpeg2video -timecode 10:11:12:26");
    row("the coder's own rate stays", "25/1", QString(coded25) + " -timecode 10:11:12:13 -r 25",
        QString(coded25) + " -timecode 10:11:12:13");
    row("no timecode, the coder's own rate stays", "25/1", coded25, coded25);
    row("a copied phone recording counts at its average", "60/1:30/1",
        "-vcodec copy -timecode 10:11:12:13 -r 30", "-vcodec copy -timecode 10:11:12:13");
    row("fields are not frames", "50/1:25/1", "-vcodec mpeg2video -timecode 10:11:12:13 -r 25",
        "-vcodec mpeg2video -timecode 10:11:12:13");
    row("a coder makes a wavering rate constant", "30/1:2933/100",
        "-vcodec mpeg2video -timecode 10:11:12:13 -r 30", "-vcodec mpeg2video -timecode 10:11:12:13");
    row("NTSC without a rate counts as the picture", "24000/1001", "-r 24000/1001 -timecode 10:11:12:13",
        "-r 24000/1001 -timecode 10:11:12:13");
    row("NTSC without a rate counts half as fast as 59.94", "60000/1001", "-timecode 10:11:12:13",
        "-timecode 10:11:12:26");
    row("NTSC without a rate, a frame number that only 30 has", "24000/1001",
        "-r 24000/1001 -timecode 10:11:12:25", "-r 24000/1001 -timecode 10:11:12:20");
    row("NTSC whose rate the application knows", "24000/1001", "-r 24000/1001 -timecode 10:11:12:15",
        "-r 24000/1001 -timecode 10:11:12:12", "30000/1001");
    row("midnight", "25/1", "-vcodec copy -timecode 00:00:00:00 -r 25", "-vcodec copy -timecode 00:00:00:00");
    row("last frame of the day", "50/1", "-vcodec copy -timecode 23:59:59:24 -r 25",
        "-vcodec copy -timecode 23:59:59:48");
}

void TestExportRules::thePictureKeepsItsRate()
{
    QFETCH(QString, rate);
    QFETCH(QString, timecodeRate);
    QFETCH(QString, given);
    QFETCH(QString, corrected);
    const Export job =
        exportFor("-y -i in.mov " + given + " out.MOV", "video:" + rate, "TIMECODE_RATE=" + timecodeRate);
    QCOMPARE(wordsWithoutTags(job).remove("-xerror "), "-y -i in.mov -map 0:0 " + corrected + " out.MOV");
}

void TestExportRules::filesInOddFoldersAreFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("corrected");
    row("absolute", "/a:b/-x.MOV", "/a:b/-x.MOV");
    row("relative", "out/x.MOV", "out/x.MOV");
    row("begins with a dash", "-x/clip.MOV", "./-x/clip.MOV");
    row("looks like a protocol", "a:b/clip.MOV", "./a:b/clip.MOV");
    row("colon in the name", "out/a:b.MOV", "out/a:b.MOV");
    row("bare name with a colon", "10:00.MOV", "./10:00.MOV");
}

void TestExportRules::filesInOddFoldersAreFiles()
{
    QFETCH(QString, path);
    QFETCH(QString, corrected);
    QCOMPARE(QString::fromStdString(filePath(path.toStdString())), corrected);
    QCOMPARE(wordsWithoutTags(exportFor("-y -i " + path + " " + path, "video:25/1")),
             "-y -i " + corrected + " -map 0:0 " + corrected);
}

void TestExportRules::whatCannotBeRightIsRefused_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("reason");
    const auto timecode = [](const char *name, const char *rate, const QString &words, const char *reason) {
        row(name, QString("video:") + rate, words + " out.MOV", QString(reason));
    };
    timecode("empty timecode", "25/1", "-timecode '' -r 25", "is empty");
    timecode("no timecode at all", "25/1", "-timecode x -r 25", "is no timecode");
    timecode("a digit too many", "25/1", "-timecode 10:11:12:013 -r 25", "is no timecode");
    timecode("hour 24", "25/1", "-timecode 24:00:00:00 -r 25", "no time of day");
    timecode("minute 60", "25/1", "-timecode 10:60:00:00 -r 25", "no time of day");
    timecode("frame 25 at 25", "25/1", "-timecode 10:11:12:25 -r 25",
             "timecode 10:11:12:25 has no such frame");
    timecode("frame 29 at 25", "50/1", "-timecode 10:11:12:29 -r 25", "no such frame");
    timecode("drop-frame at 25", "25/1", "-timecode 10:11:12;13 -r 30000/1001",
             "timecode 10:11:12;13 needs a picture of 29.97 or 59.94");
    timecode("drop-frame at 30", "30/1", "-timecode 10:11:12;13 -r 30000/1001", "29.97 or 59.94");
    timecode("drop-frame counted at 25", "30000/1001", "-timecode 10:11:12;13 -r 25", "29.97 or 59.94");
    timecode("a number that drop-frame leaves out", "30000/1001", "-timecode 10:11:00;01 -r 30000/1001",
             "timecode 10:11:00;01 does not exist");
    timecode("reader's rate 0", "25/1", "-timecode 10:11:12:13 -r 0", "is not known");
    timecode("reader's rate 0/1001", "25/1", "-timecode 10:11:12:13 -r 0/1001", "is not known");
    timecode("NTSC without a rate at 25", "25/1", "-timecode 10:11:12:13", "is not known");
    timecode("picture without a rate", "0/0", "-timecode 10:11:12:13 -r 25", "picture is not known");
    timecode("a picture a minute", "1/60", "-timecode 10:11:12:13 -r 25",
             "no frames to count for 10:11:12:13");
    timecode("a coder's rate that is another picture's", "50/1", coded25, "does not run at the rate");
    row("MXF without a picture", "audio:pcm_s24le:2", "-acodec pcm_s24le out.MXF", "has no picture");
    row("nothing left", "data", "-map 0:v -vcodec copy out.MOV", "nothing of");
    row("a WAV file of nothing but timecode", "audio:pcm_s24le:1",
        "-write_bext 1 -metadata time_reference=5 out.WAV", "nothing but the timecode");
    row("a stream that is not there", "video:25/1 audio:pcm_s24le:2",
        "-map 0:v -map 0:7 -acodec pcm_s24le out.MOV", "no audio stream 7");
    row("a stream that is no audio", "video:25/1 data", "-map 0:v -map 0:1 -acodec pcm_s24le out.MOV",
        "no audio stream 1");
    row("a channel that is not there", "video:25/1 audio:pcm_s24le:4",
        "-map 0:1 -map_channel -0.1.4 -map_channel 0.1.0:0.0 -acodec pcm_s24le out.MOV", "no channel 4");
}

void TestExportRules::whatCannotBeRightIsRefused()
{
    QFETCH(QString, source);
    QFETCH(QString, given);
    QFETCH(QString, reason);
    QString reported;
    try {
        exportFor("-y -i in.mov " + given, source);
    } catch (const Refusal &refusal) {
        reported = refusal.what();
    }
    QVERIFY2(reported.contains(reason), qPrintable(reported));
    QVERIFY(!reported.contains('\n'));
}

void TestExportRules::theJobTellsWhatTheFileMustHold()
{
    const Export job =
        exportFor("-y -i in.mov -map 0:v -map 0:1 -acodec pcm_s24le -map 0:2 -map_channel -0.2.3 "
                  "-map_channel 0.2.0:0.0 -acodec pcm_s24le -vcodec copy -timecode 10:11:12:13 -r 25 "
                  "-x/out.MOV",
                  "video:50/1 audio:pcm_s24le:2 audio:pcm_s24le:4", "TIMECODE_CHANNEL=2.3");
    QCOMPARE(job.path, std::string("./-x/out.MOV"));
    QCOMPARE(job.pictureStream, 0);
    QCOMPARE(job.timecode, std::string("10:11:12:26"));
    QCOMPARE(int(job.audio.size()), 2);
    QCOMPARE(job.audio[0].channels, 2);
    QCOMPARE(job.audio[1].stream, 2);
    QCOMPARE(job.audio[1].channels, 3);
    QVERIFY(job.copiesPicture);
    QVERIFY(!exportFor("-y -i in.mov " + QString(coded25) + " out.MOV", "video:25/1").copiesPicture);

    const QString sound = "-acodec pcm_s16le -metadata time_reference=5 out.WAV";
    QCOMPARE(exportFor("-y -i in.wav -write_bext 1 " + sound, "audio:pcm_s16le:2").timeReference,
             std::string("5"));
    QCOMPARE(exportFor("-y -i in.wav " + sound, "audio:pcm_s16le:2").timeReference, std::string());
}

QTEST_APPLESS_MAIN(TestExportRules)
#include "tst_exportrules.moc"

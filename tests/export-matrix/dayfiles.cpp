// SPDX-License-Identifier: MIT
#include "tests/export-matrix/dayfiles.h"

#include "tests/export-matrix/sourceparts.h"

// clazy:excludeall=non-pod-global-static

namespace exportmatrix
{
namespace
{

using namespace sourceparts;
using testsignals::LtcRate;

const ColourTags untagged{"tv", {}, {}, {}};
const ColourTags hd{"tv", "bt709", "bt709", "bt709"};
const ColourTags fullHd{"pc", "bt709", "bt709", "bt709"};
const ColourTags sd{"tv", "smpte170m", "smpte170m", "smpte170m"};
const ColourTags sdOf25{"tv", "bt470bg", "smpte170m", "bt470bg"};
const ColourTags pq{"tv", "bt2020", "smpte2084", "bt2020nc"};
const ColourTags hlg{"tv", "bt2020", "arib-std-b67", "bt2020nc"};

PictureShape shape(int width, int height, const ColourTags &colours, const QString &pixelFormat,
                   Fields fields = Fields::Progressive)
{
    PictureShape made;
    made.width = width;
    made.height = height;
    made.colours = colours;
    made.pixelFormat = pixelFormat;
    made.fields = fields;
    return made;
}

PictureShape withPixels(PictureShape shape, int width, int height)
{
    shape.pixelWidth = width;
    shape.pixelHeight = height;
    return shape;
}

PictureShape turned(PictureShape shape, int rotation)
{
    shape.rotation = rotation;
    return shape;
}

QStringList interlaced(const PictureShape &shape)
{
    return shape.fields == Fields::Progressive ? QStringList() : QStringList{"-flags", "+ildct+ilme"};
}

QStringList proRes(const PictureShape &shape, const QString &profile)
{
    return QStringList{"-c:v:0", "prores_ks", "-profile:v", profile} + interlaced(shape);
}

QStringList h264(const PictureShape &shape)
{
    QStringList words{"-c:v:0", "libx264", "-preset", "ultrafast", "-qp", "14", "-bf", "0"};
    if (shape.fields != Fields::Progressive)
        words += QStringList{"-x264opts", shape.fields == Fields::TopFirst ? "tff=1" : "bff=1"};
    return words + interlaced(shape);
}

QStringList hevc(const QString &hdr = {})
{
    return {"-c:v:0", "libx265", "-preset", "ultrafast",    "-crf",
            "14",     "-tag:v",  "hvc1",    "-x265-params", "log-level=error:bframes=0" + hdr};
}

QStringList mpeg2(const PictureShape &shape)
{
    return QStringList{"-c:v:0", "mpeg2video", "-b:v", "50M", "-maxrate",
                       "50M",    "-bufsize",   "36M",  "-bf", "0"} +
           interlaced(shape);
}

QStringList avcIntra(const PictureShape &shape)
{
    return QStringList{"-c:v:0",          "libx264",
                       "-preset",         "ultrafast",
                       "-avcintra-class", "100",
                       "-x264opts",       shape.fields == Fields::Progressive ? "tff=0" : "tff=1"} +
           interlaced(shape);
}

QStringList dnxhd(const PictureShape &shape, const QString &bitRate)
{
    return QStringList{"-c:v:0", "dnxhd", "-b:v", bitRate} + interlaced(shape);
}

QStringList tag(const QString &name, const QString &value)
{
    return {"-metadata", name + '=' + value};
}

const char recorded[] = "2024-05-03T09:00:00Z";

/// What a cinema camera notes in a QuickTime file.
QStringList cinemaNotes(const QString &reel)
{
    return QStringList{"-movflags", "use_metadata_tags"} + tag("creation_time", recorded) +
           tag("com.apple.quicktime.make", "Camera Works") + tag("com.apple.quicktime.model", "Cinema 1") +
           tag("com.apple.quicktime.software", "7.1") + tag("com.camera.scene", "12A") +
           QStringList{"-timecode",       "01:02:03:04",
                       "-metadata:s:v:0", "reel_name=" + reel,
                       "-metadata:s:v:0", "handler_name=Cinema picture",
                       "-metadata:s:a:0", "handler_name=Cinema sound"};
}

/// What a still camera notes.
QStringList stillCameraNotes()
{
    return tag("creation_time", recorded) + tag("make", "Still Works") + tag("model", "S5") +
           tag("title", "Scene 12A") + tag("comment", "second camera") + tag("artist", "Kim") +
           QStringList{"-metadata:s:a:0", "language=fra"};
}

/// What a telephone notes in a QuickTime file.
QStringList telephoneNotes()
{
    return QStringList{"-movflags", "use_metadata_tags"} + tag("creation_time", recorded) +
           tag("com.apple.quicktime.make", "Telephone Works") + tag("com.apple.quicktime.model", "T14") +
           tag("com.apple.quicktime.creationdate", "2024-05-03T11:00:00+0200") +
           tag("com.apple.quicktime.location.ISO6709", "+48.8577+002.2950+035.0/") +
           QStringList{"-metadata:s:v:0", "handler_name=Core picture"};
}

/// What an MP4 file can say by itself.
QStringList plainNotes()
{
    return tag("creation_time", recorded) + tag("location", "+48.8577+002.2950/") +
           tag("title", "On the way") + tag("comment", "from the car") +
           QStringList{"-metadata:s:v:0", "handler_name=Pictures"};
}

/// A file with one stream of two channels, the second of which carries timecode.
SourceFile camera(const QString &name, const QString &rate, LtcRate timecode, const PictureShape &shape,
                  const QStringList &picture, const QString &audio, const QStringList &notes = {})
{
    SourceFile source = movie(name, rate, {channels(2, 1, timecode)}, coded(audio));
    source.shape = shape;
    source.pictureArguments = picture;
    source.fileArguments = notes;
    source.isOneSoundEach = true;
    if (name.endsWith(".mts"))
        source.fileArguments += {"-f", "mpegts"};
    return source;
}

SourceFile withFourTracks(SourceFile source, LtcRate timecode = at25)
{
    source.tracks = single(4, 3, timecode);
    source.trackArguments.fill(source.trackArguments.first(), source.tracks.size());
    return source;
}

/// A kind that the export matrix takes up; \a isCore: in each test run.
SourceFile asShape(SourceFile source, bool isCore = false)
{
    source.isShape = true;
    source.isCore = isCore;
    return source;
}

QVector<SourceFile> cinemaFiles()
{
    const PictureShape full = shape(1920, 1080, hd, "yuv422p10le");
    const PictureShape fields = shape(1920, 1080, hd, "yuv422p10le", Fields::TopFirst);
    const PictureShape small = shape(1280, 720, hd, "yuv422p10le");
    const PictureShape cinema = shape(2048, 1080, hd, "yuv422p10le");
    const PictureShape large = shape(4096, 2160, hd, "yuv422p10le");
    const PictureShape deep = shape(1920, 1080, hd, "yuv444p10le");
    const PictureShape narrow = withPixels(shape(1440, 1080, hd, "yuv422p10le"), 4, 3);
    const PictureShape old = shape(1440, 1080, hd, "yuv422p10le");
    const PictureShape wide = withPixels(shape(1280, 1080, hd, "yuv422p10le"), 2, 1);
    return {
        camera("prores-hq-2398.mov", "24000/1001", at23976, full, proRes(full, "hq"), "pcm_s24le",
               cinemaNotes("A001")),
        asShape(camera("prores-25.mov", "25/1", at25, full, proRes(full, "standard"), "pcm_s24le",
                       cinemaNotes("A002"))),
        camera("prores-lt-2997-drop.mov", "30000/1001", at2997Drop, full, proRes(full, "lt"), "pcm_s24le",
               QStringList{"-timecode", "01:02:03;04"} + tag("creation_time", recorded)),
        asShape(camera("prores-2048x1080.mov", "24/1", at24, cinema, proRes(cinema, "standard"), "pcm_s24le",
                       cinemaNotes("A003"))),
        camera("prores-4444.mov", "24/1", at24, deep, proRes(deep, "4444"), "pcm_s24le", cinemaNotes("A004")),
        asShape(camera("prores-1080i50.mov", "25/1", at25, fields, proRes(fields, "standard"), "pcm_s24le",
                       cinemaNotes("A005")),
                true),
        camera("prores-1080i5994.mov", "30000/1001", at2997Drop, fields, proRes(fields, "standard"),
               "pcm_s24le"),
        camera("prores-720p25.mov", "25/1", at25, small, proRes(small, "proxy"), "pcm_s24le"),
        asShape(camera("prores-720p50.mov", "50/1", at25, small, proRes(small, "standard"), "pcm_s24le",
                       cinemaNotes("A006")),
                true),
        camera("prores-720p5994.mov", "60000/1001", at2997Drop, small, proRes(small, "standard"),
               "pcm_s24le"),
        asShape(camera("prores-4096x2160.mov", "24/1", at24, large, proRes(large, "proxy"), "pcm_s24le",
                       cinemaNotes("A007"))),
        asShape(camera("prores-1440x1080-wide.mov", "25/1", at25, narrow, proRes(narrow, "lt"), "pcm_s24le")),
        asShape(camera("prores-4x3.mov", "25/1", at25, old, proRes(old, "lt"), "pcm_s24le")),
        camera("prores-anamorphic.mov", "24/1", at24, wide, proRes(wide, "lt"), "pcm_s24le"),
    };
}

QVector<SourceFile> hdrFiles()
{
    const PictureShape proResPq = shape(1920, 1080, pq, "yuv422p10le");
    const PictureShape proResHlg = shape(1920, 1080, hlg, "yuv422p10le");
    const PictureShape telephone = shape(1920, 1080, hlg, "yuv420p10le");
    PictureShape hdr10 = shape(1920, 1080, pq, "yuv420p10le");
    hdr10.hasHdrMetadata = true;
    const QString luminance =
        ":hdr10=1:colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc:master-display="
        "G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,1):max-cll=1000,400";
    return {
        asShape(camera("prores-pq.mov", "25/1", at25, proResPq, proRes(proResPq, "standard"), "pcm_s24le")),
        camera("prores-hlg.mov", "25/1", at25, proResHlg, proRes(proResHlg, "standard"), "pcm_s24le"),
        asShape(camera("hdr10.mov", "25/1", at25, hdr10, hevc(luminance), "pcm_s24le", telephoneNotes()),
                true),
        camera("telephone-hlg.mov", "30/1", at30, telephone, hevc(), "aac", telephoneNotes()),
    };
}

QVector<SourceFile> smallCameraFiles()
{
    const PictureShape full = shape(1920, 1080, fullHd, "yuvj420p");
    const PictureShape plain = shape(1920, 1080, hd, "yuv420p");
    const PictureShape tall = shape(1440, 1080, fullHd, "yuvj420p");
    const PictureShape portrait = turned(shape(720, 1280, hd, "yuv420p"), 90);
    const PictureShape otherPortrait = turned(shape(720, 1280, hd, "yuv420p"), 270);
    const PictureShape upsideDown = turned(shape(1280, 720, hd, "yuv420p"), 180);
    QVector<SourceFile> files{
        camera("still-25.mov", "25/1", at25, full, h264(full), "pcm_s16le", stillCameraNotes()),
        camera("still-2398.mov", "24000/1001", at23976, full, h264(full), "pcm_s16le", stillCameraNotes()),
        camera("still-2997.mov", "30000/1001", at2997, plain, h264(plain), "pcm_s16le", stillCameraNotes()),
        camera("still-50.mov", "50/1", at25, plain, h264(plain), "pcm_s16le", stillCameraNotes()),
        asShape(camera("portrait.mov", "30/1", at30, portrait, h264(portrait), "aac", telephoneNotes()),
                true),
        camera("other-portrait.mp4", "30/1", at30, otherPortrait, h264(otherPortrait), "aac", plainNotes()),
        camera("upside-down.mov", "30/1", at30, upsideDown, h264(upsideDown), "aac", telephoneNotes()),
        asShape(camera("wavering.mp4", "30/1", at30, plain, h264(plain), "aac", plainNotes()), true),
        asShape(camera("action.mp4", "30000/1001", at2997Drop, full, h264(full), "aac",
                       tag("creation_time", recorded) +
                           QStringList{"-metadata:s:v:0", "encoder=GoPro AVC encoder", "-metadata:s:v:0",
                                       "handler_name=GoPro AVC"}),
                true),
        camera("action-50.mp4", "50/1", at25, full, h264(full), "aac", tag("creation_time", recorded)),
        camera("action-4x3.mp4", "25/1", at25, tall, h264(tall), "aac", tag("creation_time", recorded)),
        asShape(camera("chapters.mov", "25/1", at25, plain, h264(plain), "pcm_s16le", stillCameraNotes()),
                true),
        camera("chapters.mp4", "25/1", at25, plain, h264(plain), "aac", plainNotes()),
        asShape(camera("four-channel-aac.mp4", "25/1", at25, plain, h264(plain), "aac", plainNotes()), true),
    };
    for (SourceFile &file : files) {
        file.hasWaveringRate = file.name == "wavering.mp4";
        file.hasDataTrack = file.name.startsWith("action");
        if (file.name.startsWith("chapters"))
            file.chapters = QStringList{"Slate", "Action"};
        if (file.name == "four-channel-aac.mp4") {
            file.tracks = {channels(4, 3)};
            file.trackArguments = {coded("aac") + QStringList{"-b:a:%1", "512k"}};
        }
    }
    return files;
}

QVector<SourceFile> broadcastFiles()
{
    const PictureShape fields = shape(1920, 1080, hd, "yuv422p", Fields::TopFirst);
    const PictureShape frames = shape(1920, 1080, hd, "yuv422p");
    const PictureShape deepFields = shape(1920, 1080, hd, "yuv422p10le", Fields::TopFirst);
    const PictureShape deepFrames = shape(1920, 1080, hd, "yuv422p10le");
    const PictureShape camcorder = shape(1920, 1080, hd, "yuv420p", Fields::TopFirst);
    const PictureShape camcorderFrames = shape(1920, 1080, hd, "yuv420p");
    const PictureShape narrow = withPixels(shape(1440, 1080, hd, "yuv420p", Fields::TopFirst), 4, 3);
    return {
        asShape(withFourTracks(camera("mpeg2-1080i50.MXF", "25/1", at25, fields, mpeg2(fields), "pcm_s24le",
                                      tag("comment_scene", "12A")))),
        withFourTracks(camera("mpeg2-2398.MXF", "24000/1001", at23976, frames, mpeg2(frames), "pcm_s24le"),
                       at23976),
        withFourTracks(
            camera("mpeg2-1080i5994.MXF", "30000/1001", at2997Drop, fields, mpeg2(fields), "pcm_s24le"),
            at2997Drop),
        asShape(withFourTracks(camera("avc-intra-1080i50.MXF", "25/1", at25, deepFields, avcIntra(deepFields),
                                      "pcm_s24le")),
                true),
        withFourTracks(
            camera("avc-intra-25.MXF", "25/1", at25, deepFrames, avcIntra(deepFrames), "pcm_s24le")),
        camera("dnxhd-25.MXF", "25/1", at25, frames, dnxhd(frames, "120M"), "pcm_s24le"),
        camera("dnxhd-1080i50.MXF", "25/1", at25, fields, dnxhd(fields, "120M"), "pcm_s24le"),
        asShape(camera("camcorder-1080i50.mts", "25/1", at25, camcorder, h264(camcorder), "ac3")),
        camera("camcorder-1080p50.mts", "50/1", at25, camcorderFrames, h264(camcorderFrames), "ac3"),
        camera("camcorder-1080i5994.mts", "30000/1001", at2997Drop, camcorder, h264(camcorder), "ac3"),
        camera("camcorder-1440x1080i50.mts", "25/1", at25, narrow, h264(narrow), "ac3"),
    };
}

QVector<SourceFile> standardDefinitionFiles()
{
    const PictureShape lines576 =
        withPixels(shape(720, 576, untagged, "yuv420p", Fields::BottomFirst), 16, 15);
    const PictureShape wide576 =
        withPixels(shape(720, 576, untagged, "yuv420p", Fields::BottomFirst), 64, 45);
    const PictureShape lines480 = withPixels(shape(720, 480, untagged, "yuv411p", Fields::BottomFirst), 8, 9);
    const PictureShape tagged480 = withPixels(shape(720, 480, sd, "yuv422p", Fields::BottomFirst), 8, 9);
    const PictureShape tagged576 = withPixels(shape(720, 576, sdOf25, "yuv422p", Fields::TopFirst), 16, 15);
    const PictureShape square = shape(640, 480, sd, "yuv420p");
    return {
        asShape(camera("dv-576i.mov", "25/1", at25, lines576, {"-c:v:0", "dvvideo"}, "pcm_s16le"), true),
        camera("dv-576i-wide.mov", "25/1", at25, wide576, {"-c:v:0", "dvvideo"}, "pcm_s16le"),
        camera("dv-480i.mov", "30000/1001", at2997Drop, lines480, {"-c:v:0", "dvvideo"}, "pcm_s16le"),
        asShape(
            camera("tagged-480i.mov", "30000/1001", at2997Drop, tagged480, mpeg2(tagged480), "pcm_s16le")),
        asShape(camera("tagged-576i.mov", "25/1", at25, tagged576, mpeg2(tagged576), "pcm_s16le")),
        camera("tagged-640x480.mp4", "30/1", at30, square, h264(square), "aac", plainNotes()),
    };
}

/// Files that are exported before they were read, or that break off.
QVector<SourceFile> hastyFiles()
{
    const PictureShape frames = shape(1920, 1080, hd, "yuv422p10le");
    const PictureShape plain = shape(1920, 1080, hd, "yuv420p");
    const PictureShape small = shape(1280, 720, hd, "yuv420p");
    QVector<SourceFile> files{
        asShape(camera("unread.mov", "25/1", at25, frames, proRes(frames, "lt"), "pcm_s24le",
                       cinemaNotes("A008")),
                true),
        camera("unread.mp4", "25/1", at25, plain, h264(plain), "aac", plainNotes()),
        asShape(withFourTracks(camera("unread.MXF", "25/1", at25, frames, avcIntra(frames), "pcm_s24le"))),
        asShape(camera("cut-off.mp4", "25/1", at25, small, h264(small), "aac", {"-movflags", "faststart"}),
                true),
    };
    for (SourceFile &file : files) {
        file.isRead = !file.name.startsWith("unread");
        file.isCutOff = file.name.startsWith("cut-off");
    }
    return files;
}

/// The depth that a PCM codec's name gives.
int bitsOf(const QString &codec)
{
    return codec.contains("16") ? 16 : (codec.contains("32") ? 32 : 24);
}

SourceFile recorder(const QString &name, int count, int timecode, LtcRate rate,
                    const QString &codec = "pcm_s24le", int sampleRate = 48000)
{
    SourceFile source = sound(name, channels(count, timecode, rate), withoutLayout(codec, count));
    source.fileArguments += tag("comment", "sSPEED=025.000-ND");
    source.sampleRate = sampleRate;
    source.chunks = wavechunks::ofRecorder(count, timecode, sampleRate, bitsOf(codec));
    source.isOneSoundEach = true;
    return source;
}

QVector<SourceFile> recorderFiles()
{
    QVector<SourceFile> files{
        asShape(recorder("recorder-two.wav", 2, 1, at25), true),
        recorder("recorder-three.wav", 3, 0, at25),
        asShape(recorder("recorder-four.wav", 4, 2, at2997Drop), true),
        recorder("recorder-eight.wav", 8, 7, at23976),
        recorder("recorder-no-timecode.wav", 2, -1, at25),
        recorder("recorder-96000.wav", 2, 1, at24, "pcm_s24le", 96000),
        recorder("recorder-float.wav", 2, 1, at25, "pcm_f32le"),
        recorder("recorder-16.wav", 2, 1, at2997, "pcm_s16le"),
        asShape(recorder("early-chunks.wav", 2, 1, at25)),
        asShape(recorder("long-rf64.wav", 2, 1, at30)),
    };
    for (SourceFile &file : files) {
        if (file.name.startsWith("long"))
            file.fileArguments += {"-rf64", "always"};
    }
    return files;
}

} // namespace

QVector<SourceFile> dayFiles()
{
    QVector<SourceFile> files = cinemaFiles() + hdrFiles() + smallCameraFiles() + broadcastFiles() +
                                standardDefinitionFiles() + hastyFiles() + recorderFiles();
    for (SourceFile &file : files)
        file.isOfDay = true;
    return files;
}

} // namespace exportmatrix

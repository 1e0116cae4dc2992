// SPDX-License-Identifier: MIT
#include "tests/export-matrix/sourcelist.h"

#include "tests/export-matrix/dayfiles.h"
#include "tests/export-matrix/sourceparts.h"

namespace exportmatrix
{
namespace
{

using namespace sourceparts;

QVector<SourceFile> quickTimeSources()
{
    QVector<SourceFile> sources{
        movie("stereo-le.mov", "25/1", {channels(2, 0)}, coded("pcm_s24le"), true),
        movie("stereo-be.mov", "25/1", {channels(2, 1)}, coded("pcm_s16be"), true),
        movie("pair-le-no-layout.mov", "25/1", {channels(2, 1)}, withoutLayout("pcm_s24le", 2), true),
        movie("pair-be-no-layout.mov", "25/1", {channels(2, 0)}, withoutLayout("pcm_s24be", 2)),
        movie("two-mono.mov", "24/1", single(2, 1, at24), coded("pcm_s24le")),
        movie("two-stereo.mov", "24000/1001", {channels(2, -1), channels(2, 0, at23976, 2)},
              coded("pcm_s24le"), true),
        movie("four-channels.mov", "25/1", {channels(4, 2)}, coded("pcm_s24le"), true),
        movie("sixteen-channels.mov", "30/1", {channels(16, 9, at30)}, withoutLayout("pcm_s24le", 16)),
        movie("44100.mov", "25/1", {channels(2, 1)}, coded("pcm_s16le")),
        movie("old-timecode.mov", "25/1", {channels(2, 0)}, coded("pcm_s16le"), true),
        movie("aac-and-pcm.mov", "25/1", {channels(2, -1), channels(2, 1, at25, 2)}, coded("pcm_s24le")),
        movie("two-depths.mov", "25/1", {channels(2, -1), channels(2, 1, at25, 2)}, coded("pcm_s24le"), true),
        movie("two-pictures.mov", "25/1", {channels(2, 1)}, coded("pcm_s16le"), true),
        movie("sound-only.mov", {}, single(2, 1), coded("pcm_s24le"), true),
        movie("no-timecode.mov", "25/1", {channels(2, -1)}, coded("pcm_s16le")),
        movie("2997-drop.mov", "30000/1001", {channels(2, 0, at2997Drop)}, coded("pcm_s16le"), true),
        movie("2997.mov", "30000/1001", {channels(2, 1, at2997)}, coded("pcm_s16le")),
        movie("50.mov", "50/1", {channels(2, 1)}, coded("pcm_s24le"), true),
        movie("5994-drop.mov", "60000/1001", {channels(2, 1, at2997Drop)}, coded("pcm_s24le")),
        movie("60.mov", "60/1", {channels(2, 1, at30)}, coded("pcm_s24le")),
        movie("ltc-24-picture-25.mov", "25/1", {channels(2, 1, at24)}, coded("pcm_s24le")),
        movie("ltc-25-picture-24.mov", "24/1", {channels(2, 1, at25)}, coded("pcm_s24le")),
        movie("ltc-drop-picture-25.mov", "25/1", {channels(2, 1, at2997Drop)}, coded("pcm_s24le")),
    };
    for (SourceFile &source : sources) {
        if (source.name == "44100.mov")
            source.sampleRate = 44100;
        if (source.name == "old-timecode.mov")
            source.fileArguments = QStringList{"-timecode", "01:02:03:04"};
        if (source.name == "two-depths.mov")
            source.trackArguments[0] = coded("pcm_s16le");
        if (source.name == "aac-and-pcm.mov")
            source.trackArguments[0] = coded("aac");
        source.hasCover = source.name == "two-pictures.mov";
    }
    return sources;
}

QVector<SourceFile> otherCameraSources()
{
    QVector<SourceFile> sources{
        movie("aac.mp4", "25/1", {channels(2, 1)}, coded("aac"), true),
        movie("aac-2997-drop.mp4", "30000/1001", {channels(2, 0, at2997Drop)}, coded("aac")),
        movie("cover.mp4", "25/1", {channels(2, 1)}, coded("aac")),
        movie("ac3.mts", "25/1", {channels(2, 0)}, coded("ac3"), true),
        movie("ac3-50.mts", "50/1", {channels(2, 1)}, coded("ac3")),
        movie("mp2.mts", "25/1", {channels(2, 0)}, coded("mp2")),
        movie("four-mono.MXF", "25/1", single(4, 3), coded("pcm_s24le"), true),
        movie("pair.MXF", "25/1", {channels(2, 1)}, coded("pcm_s24le")),
        movie("four-mono-16.MXF", "30000/1001", single(4, 0, at2997Drop), coded("pcm_s16le")),
        movie("four-mono-50.MXF", "50/1", single(4, 2), coded("pcm_s24le")),
    };
    for (SourceFile &source : sources) {
        source.hasCover = source.name == "cover.mp4";
        if (source.name.endsWith(".mts"))
            source.fileArguments = QStringList{"-f", "mpegts"};
    }
    return sources;
}

QVector<SourceFile> soundSources()
{
    QVector<SourceFile> sources{
        sound("mono.wav", channels(1, 0), coded("pcm_s24le"), true),
        sound("mono-no-timecode.wav", channels(1, -1), coded("pcm_s24le")),
        sound("stereo-16.wav", channels(2, 0), coded("pcm_s16le"), true),
        sound("stereo-float.wav", channels(2, 1, at2997Drop), coded("pcm_f32le")),
        sound("four.wav", channels(4, 1, at23976), coded("pcm_s24le"), true),
        sound("eight.wav", channels(8, 7), withoutLayout("pcm_s32le", 8)),
        sound("old-reference.wav", channels(2, 1), coded("pcm_s24le"), true),
        sound("adpcm.wav", channels(2, 1), coded("adpcm_ima_wav")),
        sound("44100.wav", channels(2, 1), coded("pcm_s16le")),
    };
    for (SourceFile &source : sources) {
        if (source.name == "old-reference.wav")
            source.fileArguments += {"-metadata", "time_reference=1728000000", "-metadata", "comment=old"};
        if (source.name.startsWith("44100"))
            source.sampleRate = 44100;
    }
    return sources;
}

} // namespace

QVector<SourceFile> allSources()
{
    QVector<SourceFile> sources = quickTimeSources() + otherCameraSources() + soundSources();
    const QVector<SourceFile> day = dayFiles();
    for (const SourceFile &file : day) {
        if (file.isShape)
            sources += file;
    }
    return sources;
}

} // namespace exportmatrix

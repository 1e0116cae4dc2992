// SPDX-License-Identifier: MIT
#include "tests/export-matrix/sourcefile.h"

#include "demo/mediakit/mediamaker.h"
#include "tests/export-matrix/toolrun.h"
#include "tests/support/wavfile.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <stdexcept>

namespace exportmatrix
{
namespace
{

QStringList coverImage()
{
    return {"-f", "lavfi", "-i", "color=c=red:size=64x64:rate=1:duration=1"};
}

/// What the application's timecode reader reports of \a timecode.
QJsonObject readerResult(const testsignals::LtcSignal &timecode)
{
    const testsignals::LtcRate rate = timecode.rate;
    return {{"Timecode", QString::fromStdString(testsignals::text(timecode.start, rate))},
            {"NTSC", rate.ntsc},
            {"DropFrame", rate.dropFrame},
            {"FrameRateBaseFound", rate.base},
            {"FrameRateFound", double(rate.base)},
            {"SamplesSinceMidnight", double(testsignals::samplesSinceMidnight(timecode))}};
}

QVector<std::vector<Samples>> samplesOf(const SourceFile &source)
{
    QVector<std::vector<Samples>> samples;
    for (const mediakit::Track &track : source.tracks)
        samples += mediakit::render(track, soundOf(source));
    return samples;
}

void writeFile(const SourceFile &source, const QVector<std::vector<Samples>> &samples, const QString &path)
{
    const QTemporaryDir tracksFolder;
    QStringList inputs{"-v", "error", "-nostdin", "-y"};
    QStringList outputs;
    int input = 0;
    if (!source.pictureRate.isEmpty()) {
        inputs += {
            "-f", "lavfi", "-i",
            QString("testsrc2=size=320x180:rate=%1:duration=%2").arg(source.pictureRate).arg(sourceDuration)};
        outputs += QStringList{"-map", QString("%1:v").arg(input++)} + source.pictureArguments;
    }
    for (int track = 0; track < samples.size(); ++track) {
        testsignals::WavFile file;
        file.sampleRate = source.sampleRate;
        file.format = testsignals::SampleFormat::Float32;
        file.channels = samples.at(track);
        const QString trackPath = tracksFolder.filePath(QString("track%1.wav").arg(track));
        testsignals::writeWav(trackPath.toStdString(), file);
        inputs += {"-i", trackPath};
        outputs += {"-map", QString("%1:a").arg(input++)};
        for (const QString &argument : source.trackArguments.at(track))
            outputs += argument.contains("%1") ? argument.arg(track) : argument;
    }
    if (source.hasCover) {
        inputs += coverImage();
        outputs +=
            {"-map", QString("%1:v").arg(input++), "-c:v:1", "mjpeg", "-disposition:v:1", "attached_pic"};
    }
    const ToolRun run = runTool("ffmpeg", inputs + outputs + source.fileArguments + QStringList{path});
    if (run.exitCode != 0)
        throw std::runtime_error((source.name + ": ").toStdString() + run.errors.toStdString());
}

FileData recordOf(const SourceFile &source, const QString &path)
{
    const ToolRun run =
        runTool("ffprobe", {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path});
    const QJsonObject probe = QJsonDocument::fromJson(run.output).object();

    FileData record;
    record.fileName = QFileInfo(path).fileName();
    record.absoluteFilePath = path;
    record.suffix = QFileInfo(path).suffix();
    record.format = probe["format"].toObject();
    record.streams = probe["streams"].toArray();
    record.duration = record.format["duration"].toString().toDouble();
    int track = 0;
    for (int i = 0; i < record.streams.size(); ++i) {
        const QJsonObject stream = record.streams.at(i).toObject();
        if (stream["codec_type"] == "video")
            record.mainStream = stream;
        if (stream["codec_type"] != "audio")
            continue;
        record.audioStreamMap.append(char(i));
        const mediakit::Track channels = source.tracks.value(track++);
        for (int channel = 0; channel < channels.size(); ++channel) {
            if (!channels.at(channel).timecode)
                continue;
            record.audioTCResult = readerResult(*mediakit::timecodeOf(soundOf(source)));
            record.setAudioTC(record.audioTCResult["Timecode"].toString(), {i, channel});
            record.hasAudioTC = true;
        }
    }
    return record;
}

} // namespace

mediakit::Recording soundOf(const SourceFile &source)
{
    mediakit::Recording recording;
    recording.path = source.name;
    recording.pictureRate = source.pictureRate;
    recording.tracks = source.tracks;
    recording.duration = sourceDuration;
    recording.sampleRate = source.sampleRate;
    return recording;
}

MadeFile makeSource(const SourceFile &source, const QString &folder)
{
    const QString path = folder + '/' + source.name;
    const QVector<std::vector<Samples>> samples = samplesOf(source);
    writeFile(source, samples, path);
    return {source, samples, recordOf(source, path)};
}

} // namespace exportmatrix

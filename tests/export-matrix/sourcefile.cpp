// SPDX-License-Identifier: MIT
#include "tests/export-matrix/sourcefile.h"

#include "testkit/fixtures/toolrun.h"
#include "testkit/media/mediamaker.h"
#include "testkit/signals/wavfile.h"
#include "tests/export-matrix/testcard.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtEndian>

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

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error(path.toStdString() + ": " + file.errorString().toStdString());
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(path.toStdString() + ": " + file.errorString().toStdString());
    return file.readAll();
}

/// The words that make the tool write a file, input after input.
struct ToolWords {
    QStringList inputs{"-v", "error", "-nostdin", "-y"};
    QStringList outputs;
    int count = 0; ///< of the inputs

    void addInput(const QStringList &words)
    {
        inputs += words;
        ++count;
    }
};

void addPicture(ToolWords &words, const SourceFile &source, const QString &folder)
{
    if (!source.shape.exists()) {
        words.addInput({"-f", "lavfi", "-i",
                        QString("testsrc2=size=320x180:rate=%1:duration=%2")
                            .arg(source.pictureRate)
                            .arg(source.duration)});
        words.outputs += {"-map", "0:v"};
    } else {
        const QString card = folder + "/card.ppm";
        writeBytes(card, testcard::image(source.shape));
        words.inputs += testcard::inputs(source.shape, card, source.pictureRate, source.duration);
        words.count += 2;
        QString filter = testcard::filter(source.shape);
        if (source.hasWaveringRate)
            filter.replace("[card]", ",settb=1/90000,setpts='PTS+mod(N*7,5)*200'[card]");
        words.outputs += {"-filter_complex", filter, "-map", "[card]"};
        if (source.hasWaveringRate)
            words.outputs += {"-fps_mode", "vfr", "-video_track_timescale", "90000"};
    }
    words.outputs += source.pictureArguments;
}

void addSound(ToolWords &words, const SourceFile &source, int track, const std::vector<Samples> &samples,
              const QString &folder)
{
    testsignals::WavFile file;
    file.sampleRate = source.sampleRate;
    file.format = testsignals::SampleFormat::Float32;
    file.channels = samples;
    const QString path = QString("%1/track%2.wav").arg(folder).arg(track);
    testsignals::writeWav(path.toStdString(), file);
    words.outputs += {"-map", QString("%1:a").arg(words.count)};
    words.addInput({"-i", path});
    for (const QString &argument : source.trackArguments.at(track))
        words.outputs += argument.contains("%1") ? argument.arg(track) : argument;
}

void addChapters(ToolWords &words, const SourceFile &source, const QString &folder)
{
    QString text = ";FFMETADATA1\n";
    const int length = int(source.duration * 1000) / int(source.chapters.size()); // [ms]
    for (int i = 0; i < source.chapters.size(); ++i) {
        text +=
            QString("[CHAPTER]\nTIMEBASE=1/1000\nSTART=%1\nEND=%2\ntitle=%3\n")
                .arg(QString::number(i * length), QString::number((i + 1) * length), source.chapters.at(i));
    }
    writeBytes(folder + "/chapters.txt", text.toUtf8());
    words.outputs += {"-map_chapters", QString::number(words.count)};
    words.addInput({"-f", "ffmetadata", "-i", folder + "/chapters.txt"});
}

/// A track of subtitles becomes one of a sensor: the tool itself writes none.
void addDataTrack(ToolWords &words, const QString &folder)
{
    writeBytes(folder + "/sensor.srt", "1\n00:00:00,000 --> 00:00:00,300\n0.1 0.2 9.8\n");
    words.outputs += {"-map", QString("%1:s").arg(words.count), "-c:s", "mov_text"};
    words.addInput({"-i", folder + "/sensor.srt"});
}

/// Notes in the header of the QuickTime file \a bytes that the picture is to be turned.
void turn(QByteArray &bytes, const PictureShape &shape)
{
    const auto header = bytes.indexOf("tkhd"); // of the first track, the picture's
    constexpr int matrix = 44;                 // [bytes] from there
    const auto put = [&](std::ptrdiff_t place, qint32 value) {
        qToBigEndian(value, bytes.data() + header + matrix + 4 * place);
    };
    constexpr qint32 one = 0x10000;
    const qint32 sine = shape.rotation == 90 ? one : (shape.rotation == 270 ? -one : 0);
    const qint32 cosine = shape.rotation == 180 ? -one : 0;
    put(0, cosine);
    put(1, sine);
    put(3, -sine);
    put(4, cosine);
    put(6, shape.rotation == 270 ? 0 : shape.width * one);
    put(7, shape.rotation == 90 ? 0 : shape.height * one);
}

/// What the tool does not write itself.
void finish(const SourceFile &source, const QString &path)
{
    if (source.shape.rotation == 0 && !source.hasDataTrack && source.chunks.isEmpty() && !source.isCutOff)
        return;
    QByteArray bytes = bytesOf(path);
    if (source.shape.rotation != 0)
        turn(bytes, source.shape);
    if (source.hasDataTrack)
        bytes.replace("tx3g", "gpmd").replace("sbtl", "meta");
    if (!source.chunks.isEmpty())
        bytes = wavechunks::withChunks(bytes, source.chunks, source.name.startsWith("early"));
    if (source.isCutOff)
        bytes.truncate(bytes.size() / 2);
    writeBytes(path, bytes);
}

void writeFile(const SourceFile &source, const QVector<std::vector<Samples>> &samples, const QString &path)
{
    const QTemporaryDir parts;
    ToolWords words;
    if (!source.pictureRate.isEmpty())
        addPicture(words, source, parts.path());
    for (int track = 0; track < samples.size(); ++track)
        addSound(words, source, track, samples.at(track), parts.path());
    if (source.hasCover) {
        words.outputs +=
            {"-map", QString("%1:v").arg(words.count), "-c:v:1", "mjpeg", "-disposition:v:1", "attached_pic"};
        words.addInput(coverImage());
    }
    if (source.hasDataTrack)
        addDataTrack(words, parts.path());
    if (!source.chapters.isEmpty())
        addChapters(words, source, parts.path());
    const ToolRun run =
        runTool("ffmpeg", words.inputs + words.outputs + source.fileArguments + QStringList{path});
    if (run.exitCode != 0)
        throw std::runtime_error((source.name + ": ").toStdString() + run.errors.toStdString());
    finish(source, path);
}

FileData recordOf(const SourceFile &source, const QString &path, const QJsonObject &probe)
{
    FileData record;
    record.fileName = QFileInfo(path).fileName();
    record.absoluteFilePath = path;
    record.suffix = QFileInfo(path).suffix();
    if (!source.isRead)
        return record;
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
    recording.duration = source.duration;
    recording.sampleRate = source.sampleRate;
    return recording;
}

QJsonObject MadeFile::audioStream(int track) const
{
    const QJsonArray streams = probe["streams"].toArray();
    for (const QJsonValue &value : streams) {
        if (value.toObject()["codec_type"] == "audio" && track-- == 0)
            return value.toObject();
    }
    return {};
}

QJsonObject MadeFile::picture() const
{
    const QJsonArray streams = probe["streams"].toArray();
    for (const QJsonValue &value : streams) {
        QJsonObject stream = value.toObject();
        if (stream["codec_type"] == "video" && stream["disposition"].toObject()["attached_pic"].toInt() == 0)
            return stream;
    }
    return {};
}

QJsonObject probeOf(const QString &path)
{
    const ToolRun run = runTool("ffprobe", {"-v", "error", "-count_packets", "-print_format", "json",
                                            "-show_format", "-show_streams", "-show_chapters", path});
    return QJsonDocument::fromJson(run.output).object();
}

QJsonArray mediainfoOf(const QString &path)
{
    const ToolRun run = runTool("mediainfo", {"--Output=JSON", path});
    return QJsonDocument::fromJson(run.output).object()["media"].toObject()["track"].toArray();
}

/// What libsndfile reads in the sound file at \a path but its comment, which exports replace.
static QString metadataReport(const QString &path)
{
    const ToolRun run =
        runTool("sndfile-metadata-get",
                {"--bext-description", "--bext-originator", "--bext-orig-ref", "--bext-umid",
                 "--bext-orig-date", "--bext-orig-time", "--bext-loudness-value", "--bext-loudness-range",
                 "--bext-max-truepeak", "--bext-max-momentary", "--bext-max-shortterm", "--bext-coding-hist",
                 "--str-title", "--str-artist", path});
    return QString::fromUtf8(run.output);
}

Facts factsOfFile(const QString &path, const QJsonObject &probe, const QVector<int> &audioNumbers,
                  const QVector<int> &channels)
{
    if (path.endsWith(".wav", Qt::CaseInsensitive))
        return wavechunks::factsOf(wavechunks::chunksOf(bytesOf(path)), channels) +
               wavechunks::factsOfReport(metadataReport(path));
    return factsOfProbe(probe, audioNumbers);
}

MadeFile makeSource(const SourceFile &source, const QString &folder)
{
    const QString path = folder + '/' + source.name;
    const QVector<std::vector<Samples>> samples = samplesOf(source);
    writeFile(source, samples, path);
    const QJsonObject probe = probeOf(path);
    MadeFile made{source, samples, recordOf(source, path, probe), probe, {}};
    QVector<int> tracks;
    for (int i = 0; i < source.tracks.size(); ++i)
        tracks += i;
    QVector<int> channels;
    for (int i = 0; i < source.tracks.value(0).size(); ++i)
        channels += i;
    made.facts = factsOfFile(path, probe, tracks, channels);
    if (source.shape.hasHdrMetadata)
        made.facts += luminanceFacts(mediainfoOf(path));
    return made;
}

} // namespace exportmatrix

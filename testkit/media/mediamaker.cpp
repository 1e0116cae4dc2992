// SPDX-License-Identifier: MIT
#include "testkit/media/mediamaker.h"

#include "testkit/signals/biphasemark.h"
#include "testkit/signals/wavfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace mediakit
{

namespace
{

constexpr double toneLevel = 0.1;          // of full scale
constexpr int toolLimit = 60 * 1000;       // [ms]
constexpr float clippedLevel = 0.7F;       // of full scale
constexpr double spikeTimeConstant = 5e-5; // [s] of the high-pass that leaves only spikes

std::vector<float> tone(double frequency, std::size_t count, int sampleRate)
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(
            toneLevel * std::sin(2.0 * M_PI * frequency * static_cast<double>(i) / sampleRate));
    return samples;
}

void clip(std::vector<float> &samples)
{
    for (float &sample : samples)
        sample = std::clamp(sample * 10.0F, -clippedLevel, clippedLevel);
}

// First-order high-pass.
void leaveSpikes(std::vector<float> &samples, int sampleRate)
{
    const auto decay = static_cast<float>(spikeTimeConstant / (spikeTimeConstant + 1.0 / sampleRate));
    float previousIn = 0.0F;
    float previousOut = 0.0F;
    for (float &sample : samples) {
        previousOut = decay * (previousOut + sample - previousIn);
        previousIn = sample;
        sample = previousOut;
    }
}

void damage(std::vector<float> &samples, Damage damage, int sampleRate)
{
    switch (damage) {
    case Damage::None:
        break;
    case Damage::Clipped:
        clip(samples);
        break;
    case Damage::Spikes:
        leaveSpikes(samples, sampleRate);
        break;
    case Damage::StartsLate:
        std::fill_n(samples.begin(), static_cast<std::size_t>(sampleRate) * 3 / 2, 0.0F);
        break;
    }
}

/// Timecode whose first label stands still for \a frozen frames.
std::vector<float> pausedTimecode(const testsignals::LtcSignal &signal, std::int64_t frozen)
{
    const std::int64_t first = testsignals::frameNumber(signal.start, signal.rate);
    return testsignals::biphaseMarkAudio(signal, {}, [&](std::int64_t index) {
        const std::int64_t number = first + std::max<std::int64_t>(0, index - frozen);
        return testsignals::frameBits(testsignals::timeOfFrame(number, signal.rate), signal.rate,
                                      signal.userBits);
    });
}

std::vector<float> render(const Channel &channel, const Recording &recording)
{
    if (!channel.timecode) {
        const auto count = static_cast<std::size_t>(std::lround(recording.duration * recording.sampleRate));
        return tone(channel.tone, count, recording.sampleRate);
    }
    testsignals::LtcSignal signal = *channel.timecode;
    signal.sampleRate = recording.sampleRate;
    signal.duration = recording.duration;
    std::vector<float> samples =
        channel.frozen > 0 ? pausedTimecode(signal, channel.frozen) : testsignals::ltcAudio(signal);
    damage(samples, channel.damage, recording.sampleRate);
    std::fill_n(samples.begin(), std::lround(channel.silence * recording.sampleRate), 0.0F);
    return samples;
}

QString writeTrack(const Track &track, const Recording &recording, const QString &path)
{
    testsignals::WavFile file;
    file.sampleRate = recording.sampleRate;
    file.format = testsignals::SampleFormat::Pcm24;
    file.channels = mediakit::render(track, recording);
    try {
        testsignals::writeWav(path.toStdString(), file);
    } catch (const std::runtime_error &error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

QStringList pictureArguments(const Recording &recording)
{
    const bool wantsMpeg2 = recording.path.endsWith(QLatin1String(".mxf"), Qt::CaseInsensitive);
    QStringList arguments{"-map", "0:v", "-pix_fmt", "yuv420p", "-bf", "0"};
    if (wantsMpeg2)
        arguments += {"-c:v", "mpeg2video", "-b:v", "4M"};
    else
        arguments += {"-c:v", "libx264", "-preset", "ultrafast"};
    return arguments;
}

// Pictures are a moving test card; each track comes from a sound file of its own.
QString writeMovie(const Recording &recording, const QString &path)
{
    const QTemporaryDir tracksFolder;
    const QString card = QString("testsrc2=size=320x180:rate=%1:duration=%2")
                             .arg(recording.pictureRate, QString::number(recording.duration));
    QStringList arguments{"-v", "error", "-nostdin", "-y", "-f", "lavfi", "-i", card};
    QStringList outputArguments = pictureArguments(recording);
    for (int i = 0; i < recording.tracks.size(); ++i) {
        const QString trackPath = tracksFolder.filePath(QString("track%1.wav").arg(i));
        QString problem = writeTrack(recording.tracks.at(i), recording, trackPath);
        if (!problem.isEmpty())
            return problem;
        arguments += {"-i", trackPath};
        outputArguments += {"-map", QString("%1:a").arg(i + 1)};
    }
    outputArguments += {"-c:a", recording.audioCodec, path};

    QProcess tool;
    tool.start("ffmpeg", arguments + outputArguments);
    if (!tool.waitForFinished(toolLimit) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return QString("%1: %2").arg(recording.path, QString::fromUtf8(tool.readAllStandardError()));
    return {};
}

// A file whose recorder lost its power before it had written the index.
QString writeBroken(const QString &path)
{
    QFile file(path);
    const QByteArray beginning("\0\0\0\x14"
                               "ftypqt  "
                               "\0\0\2\0"
                               "qt  "
                               "\0\1\0\0"
                               "mdat",
                               28);
    if (!file.open(QIODevice::WriteOnly) || file.write(beginning + QByteArray(20000, '\x55')) < 0)
        return file.errorString();
    return {};
}

QString setModified(const QString &path, const QDateTime &modified)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(modified, QFileDevice::FileModificationTime))
        return file.errorString();
    return {};
}

} // namespace

std::vector<std::vector<float>> render(const Track &track, const Recording &recording)
{
    std::vector<std::vector<float>> channels;
    for (const Channel &channel : track)
        channels.push_back(render(channel, recording));
    return channels;
}

QString make(const Recording &recording, const QString &folder)
{
    const QString path = QDir(folder).filePath(recording.path);
    QDir().mkpath(QFileInfo(path).path());
    QString problem;
    if (recording.broken)
        problem = writeBroken(path);
    else if (isSoundFile(recording))
        problem = writeTrack(recording.tracks.first(), recording, path);
    else
        problem = writeMovie(recording, path);
    if (problem.isEmpty() && recording.modified.isValid())
        problem = setModified(path, recording.modified);
    return problem;
}

QString makeAll(const QVector<Recording> &recordings, const QString &folder)
{
    for (const Recording &recording : recordings) {
        QString problem = make(recording, folder);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

} // namespace mediakit

// SPDX-License-Identifier: MIT
#include "batch/laterwindows.h"

#include "app/records/jsonnumbers.h"
#include "ffmpeg/toolarguments.h"
#include "timecode/timecode.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace laterwindows
{

namespace
{

// In units of one frame of timecode.
constexpr double mostJitter = 0.25; // between two windows of one timecode, and by a seek in coded sound
constexpr double mostDrift = 0.25;  // of the clocks, on the way back

constexpr double clockDoubt = 5.0; // [ppm] of a clock that was measured over a second of disturbed sound

const QStringList &beginning()
{
    static const QStringList words{"-v", "error", "-nostdin", "-y", "-guess_layout_max", "0"};
    return words;
}

int sampleRateOf(const FileData &file, int stream)
{
    return file.streams.at(stream).toObject()["sample_rate"].toString().toInt();
}

/// By how much \a stream begins after the file [s]: a file begins with the first of its picture and sound.
double delayOf(const FileData &file, int stream)
{
    const auto startOf = [](const QJsonObject &described, double otherwise) {
        bool isKnown = false;
        const double start = described["start_time"].toString().toDouble(&isKnown);
        return isKnown ? start : otherwise;
    };
    const double own = startOf(file.streams.at(stream).toObject(), 0.0);
    double first = own;
    for (const QJsonValue &value : file.streams) {
        const QJsonObject other = value.toObject();
        const bool isCover = other["disposition"].toObject()["attached_pic"].toInt() != 0;
        const bool isPicture = other["codec_type"] == "video" && !isCover;
        if (isPicture || other["codec_type"] == "audio")
            first = std::min(first, startOf(other, first));
    }
    return own - first;
}

timecode::Rate rateOf(const QJsonObject &reading)
{
    const bool ntsc = reading["NTSC"].toBool();
    return {reading["FrameRateBaseFound"].toInt(), ntsc, ntsc && reading["DropFrame"].toBool()};
}

LaterFinding refused(const QString &reason)
{
    LaterFinding finding;
    finding.kind = LaterFinding::Kind::NotFound;
    finding.reason = reason;
    return finding;
}

} // namespace

int count(const FileData &file)
{
    return static_cast<int>(std::ceil(file.duration / windowSeconds));
}

QStringList extraction(const FileData &file, const QString &folder, int second)
{
    QStringList arguments =
        beginning() + QStringList{"-ss", QString::number(second), "-t", QString::number(windowSeconds),
                                  "-i",  file.absoluteFilePath};
    const QVector<int> streams = toolarguments::audioStreams(file);
    for (const int stream : streams) {
        arguments +=
            {"-map", "0:" + QString::number(stream), toolarguments::extractedPath(file, folder, stream)};
    }
    return arguments;
}

QStringList exactExtraction(const FileData &file, const QString &folder, int stream, int second)
{
    QStringList arguments = beginning() + QStringList{"-i", file.absoluteFilePath};
    const qint64 rate = sampleRateOf(file, stream);
    for (int number = 0; number < 2; ++number) {
        const qint64 begin = (second + number * windowSeconds) * rate;
        arguments += {"-filter:a",
                      QString("atrim=start_sample=%1:end_sample=%2,asetpts=N/SR/TB")
                          .arg(begin)
                          .arg(begin + windowSeconds * rate),
                      "-map", "0:" + QString::number(stream), exactPath(folder, number)};
    }
    return arguments;
}

QString exactPath(const QString &folder, int number)
{
    return folder + QString("/exact_%1.wav").arg(number);
}

QString labelFault(const QByteArray &standardError, const QString &path)
{
    const QString text = QString::fromUtf8(standardError).trimmed();
    const QString before = "no timecode found in " + path + ": ";
    const int place = text.indexOf(before);
    return place < 0 ? QString() : text.mid(place + before.size());
}

LaterFinding countedBack(const FileData &file, int stream, int second, const Readings &readings)
{
    const timecode::Rate rate = rateOf(readings.exact);
    const int sampleRate = sampleRateOf(file, stream);
    const bool isKnown = std::find(timecode::rates.begin(), timecode::rates.end(),
                                   timecode::Rate{rate.base, rate.ntsc, false}) != timecode::rates.end();
    if (!isKnown || sampleRate <= 0)
        return refused(QString("the timecode at second %1 has no known rate").arg(second));

    const double speed = rate.framesPerSecond();
    const auto frameOf = [&](const QJsonObject &reading) { // [frames] of its window's first sample
        return static_cast<double>(wholeNumber(reading["SamplesSinceMidnight"])) * speed / sampleRate;
    };
    const double position = frameOf(readings.exact);
    const auto isOneTimecode = [&](const QJsonObject &other, double frames) {
        const auto day = static_cast<double>(timecode::framesPerDay(rate));
        return rateOf(other) == rate && other["ChannelFound"] == readings.exact["ChannelFound"] &&
               std::abs(std::remainder(frameOf(other) - position - frames, day)) <= mostJitter;
    };
    const double delay = delayOf(file, stream);
    if (!isOneTimecode(readings.next, windowSeconds * speed))
        return refused(QString("the timecode at second %1 does not go on").arg(second));
    if (!isOneTimecode(readings.found, -delay * speed))
        return refused(QString("the sound before the timecode at second %1 has gaps").arg(second));

    const double wayBack = second + delay; // [s]
    const double clockError = std::max(std::abs(readings.exact["FrameRateErrorPpm"].toDouble()),
                                       std::abs(readings.next["FrameRateErrorPpm"].toDouble())); // [ppm]
    if (wayBack * (clockError + clockDoubt) * 1e-6 * speed > mostDrift)
        return refused(QString("the timecode at second %1 is too far from the beginning to be counted back")
                           .arg(second));

    const double start = position - wayBack * speed;
    LaterFinding finding;
    finding.kind = LaterFinding::Kind::Found;
    finding.second = second;
    finding.stream = stream;
    finding.result = readings.exact;
    finding.result["Timecode"] = QString::fromStdString(
        timecode::toText(timecode::labelAt(std::llround(start), rate), rate.dropFrame));
    finding.result["SamplesSinceMidnight"] = QJsonValue(qint64{timecode::samplesAt(start, rate, sampleRate)});
    finding.result.remove("FramePhase"); // of the window
    return finding;
}

} // namespace laterwindows

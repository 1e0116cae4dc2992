// SPDX-License-Identifier: MIT
#include "ffmpeg/exportarguments.h"

#include "app/records/jsonnumbers.h"
#include "ffmpeg/audiomapping.h"
#include "ffmpeg/videocodec.h"
#include "timecode/timecode.h"

#include <algorithm>

namespace exportarguments
{

namespace
{

using outputname::Container;

/// [bytes per progress step] of a coded picture. Bounded, because the file can claim any duration.
qint64 codedSize(float bitRate, double duration, uint progressSteps)
{
    constexpr double bytesPerBit = 0.125;
    constexpr double largestSize = 1e15;
    const double size = static_cast<double>(bitRate) * duration * bytesPerBit / progressSteps;
    return static_cast<qint64>(std::clamp(size, 0.0, largestSize));
}

QStringList waveTimecode(const QJsonObject &reading)
{
    constexpr double highestRate = 999.0; // [frames/s] three digits
    const qint64 samples = wholeNumber(reading["SamplesSinceMidnight"]);
    const bool dropFrame = reading["DropFrame"].toBool();
    // A text that is no number would make the field unreadable.
    const double found = std::clamp(reading["FrameRateFound"].toDouble(), 0.0, highestRate);
    // A reader that reports the nominal rate of NTSC material means the true one.
    const bool isNominal = reading["NTSC"].toBool() && found == reading["FrameRateBaseFound"].toDouble();
    const double rate = isNominal ? timecode::ntscSpeed(found) : found;
    return {"-metadata", "time_reference=" + QString::number(samples), "-metadata",
            "comment=sSPEED=0" + QString::number(rate, 'f', 3) + '-' + (dropFrame ? "DF" : "ND")};
}

} // namespace

QStringList timecode(const FileData &file, int videoType, Container container)
{
    if (!file.hasAudioTC)
        return {};
    const QJsonObject &reading = file.audioTCResult;
    if (container == Container::BroadcastWave)
        return waveTimecode(reading);

    const int baseRate = reading["FrameRateBaseFound"].toInt();
    QStringList arguments{"-timecode", file.audioTC};
    if (!reading["NTSC"].toBool())
        arguments += {"-r", QString::number(baseRate)}; // a second -r after that of DNxHD, on purpose
    else if (videocodec::leavesFrameRateOpen(videoType))
        arguments += {"-r", QString::fromStdString(timecode::fraction(baseRate, true))};
    return arguments;
}

ExportCommand build(const FileData &file, const ExportOptions &options, qint64 inputFileSize,
                    const std::function<bool(const QString &)> &isTaken)
{
    const QString &input = file.absoluteFilePath;
    const Container container = outputname::containerFor(input, options.videoType);

    ExportCommand command;
    command.arguments = QStringList{"-y", "-i", input} + audiomapping::arguments(file, options, container);

    videocodec::VideoCodec codec{{}, 0.0F, true};
    if (container != Container::BroadcastWave)
        codec = videocodec::forType(options.videoType, file.mainStream);
    command.arguments += codec.arguments;
    if (options.progressSteps > 0) {
        command.expectedOutputSize = codec.copied
                                         ? inputFileSize / options.progressSteps
                                         : codedSize(codec.bitRate, file.duration, options.progressSteps);
    }

    command.outputPath = outputname::choose(input, options.exportDir, container, isTaken);
    command.arguments += timecode(file, options.videoType, container);
    command.arguments += command.outputPath;
    return command;
}

} // namespace exportarguments

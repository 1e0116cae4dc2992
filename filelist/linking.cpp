// SPDX-License-Identifier: MIT
#include "filelist/linking.h"

#include <cmath>

namespace linking
{

namespace
{

constexpr double durationTolerance = 0.05; // [s] exclusive; recorders end the files of a take a moment apart
constexpr double arithmeticError = 1e-9; // [s] keeps 5.00 and 4.95 apart, whose difference is no exact double

} // namespace

bool isWave(const FileData &file)
{
    return file.suffix.compare(QLatin1String("wav"), Qt::CaseInsensitive) == 0;
}

bool areClose(double first, double second)
{
    return std::abs(first - second) < durationTolerance - arithmeticError;
}

bool recordedTogether(const FileData &first, const FileData &second)
{
    return isWave(first) && isWave(second) && first.lastModified == second.lastModified &&
           areClose(first.duration, second.duration);
}

QJsonObject passedOnResult(const FileData &source)
{
    QJsonObject result = source.audioTCResult;
    const int sampleRate =
        source.streams.at(source.audioStreamIndex).toObject()["sample_rate"].toString().toInt();
    if (!result.contains("SampleRate") && sampleRate > 0) // what was taken over itself has it already
        result["SampleRate"] = sampleRate;
    return result;
}

Link linkTo(const FileData &source, int sourceRow)
{
    return {sourceRow, source.fileName, source.audioTC, passedOnResult(source)};
}

} // namespace linking

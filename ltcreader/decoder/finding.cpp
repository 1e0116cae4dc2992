// SPDX-License-Identifier: MIT
#include "ltcreader/decoder/finding.h"

#include <algorithm>
#include <cmath>

namespace ltcreader
{
namespace
{

// Rows of frames. Chance seldom makes even two frames that count up together, so these are strict.
constexpr int sureFrames = 10;            // unbroken, with a return of the frame number
constexpr int believableFrames = 5;       // with gaps
constexpr int unbrokenFrames = 3;         // in short recordings and between gaps
constexpr double sureJitter = 0.1;        // [bits] edges this close to their places leave no doubt about bits
constexpr double believableShare = 0.6;   // of the frames in its span that a row must hold
constexpr double toleratedOutliers = 0.1; // frames that say something else, as a share of the row's
constexpr double latestStart = 1.95; // [frames] two, about as they are measured, could carry other labels
constexpr double wrongFrame =
    0.01; // share of frames beyond the edges' reach in which the same digit is misread
constexpr double leastDoubt = 1e-9; // no recording leaves less

double spanInFrames(const LabelTrack &track)
{
    return std::max(1.0, std::round((track.last - track.first) / track.frameLength));
}

} // namespace

bool beginsWithRecording(const LabelTrack &track)
{
    return track.first < latestStart * track.frameLength;
}

bool isSure(const LabelTrack &track)
{
    return beginsWithRecording(track) && track.frames >= sureFrames && track.wraps > 0 &&
           track.outliers == 0 && track.rmsJitter < sureJitter && track.frames >= spanInFrames(track) - 0.5;
}

bool isClear(const LabelTrack &track)
{
    return track.frames >= unbrokenFrames && track.outliers == 0 && track.rmsJitter < cleanJitter &&
           track.frames >= spanInFrames(track) - 0.5;
}

bool isBelievable(const LabelTrack &track)
{
    const bool unbroken = track.longestRun >= unbrokenFrames && track.rmsJitter < sureJitter;
    const bool longRow =
        track.frames >= believableFrames && track.frames / spanInFrames(track) >= believableShare;
    const bool scattered =
        track.frames >= unbrokenFrames && track.outliers == 0 && track.rmsJitter < cleanJitter;
    return (unbroken || longRow || scattered) && track.outliers <= toleratedOutliers * track.frames;
}

Finding toFinding(const LabelTrack &track, Algorithm algorithm, int channel, const Window &window)
{
    const double confidence =
        1.0 - std::max(leastDoubt, std::pow(wrongFrame, track.frames)) - track.classDoubt;
    const FoundLine &line = track;
    return {line, channel, window.level(channel, track.first, track.last), confidence, algorithm};
}

Finding toFinding(const JointReading &reading, int channel)
{
    const double confidence = 1.0 / (1.0 + std::exp(-reading.decision.margin)) - reading.classDoubt;
    const FoundLine &line = reading;
    return {line, channel, reading.level, confidence, Algorithm::Automatic};
}

bool isWhole(const Finding &finding)
{
    const bool onADay = std::abs(finding.startCount) < 2.0 * static_cast<double>(framesPerDay(finding.rate));
    return onADay && finding.frameLength > 0.0 && std::isfinite(finding.frameLength) &&
           std::isfinite(finding.level) && std::isfinite(finding.confidence);
}

bool contradict(const Finding &a, const Finding &b)
{
    return a.rate.base != b.rate.base || a.rate.dropFrame != b.rate.dropFrame ||
           std::abs(a.startCount - b.startCount) > 0.5;
}

Reading toReading(const Finding &finding, double offset, int sampleRate)
{
    constexpr double silence = 1e-9; // [full scale] keeps the logarithm finite
    const double startCount = finding.startCount - offset / finding.frameLength;
    Reading reading;
    reading.start = labelAt(std::llround(startCount), finding.rate);
    reading.dropFrame = finding.rate.dropFrame;
    reading.ntsc = finding.rate.ntsc;
    reading.baseRate = finding.rate.base;
    reading.channel = finding.channel;
    reading.samplesSinceMidnight = samplesAt(startCount, finding.rate, sampleRate);
    reading.confidence = std::max(0.0, finding.confidence);
    reading.measuredRate = sampleRate / finding.frameLength;
    reading.rateError = 1e6 * (reading.measuredRate / finding.rate.framesPerSecond() - 1.0);
    reading.level = 20.0 * std::log10(std::max(finding.level, silence));
    reading.phase = startCount - std::floor(startCount);
    reading.framesUsed = finding.frames;
    reading.userBits = userBitsOf(finding.bits);
    reading.algorithm = finding.algorithm;
    reading.inverted = finding.inverted;
    return reading;
}

} // namespace ltcreader

// SPDX-License-Identifier: MIT
#include "testkit/recordings/oddpolicy.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace testrecordings
{

namespace
{

using namespace testsignals;

constexpr int framesOfALine = 2; // a line runs from one frame to the next

/// The line of \a signal by which frame number \a index says what \a frame says.
Truth lineOf(LtcSignal signal, const SentFrame &frame, std::int64_t index)
{
    signal.rate.dropFrame = signal.rate.base == 30 && signal.rate.ntsc && frame.dropFlag;
    signal.start = timeOfFrame(frameNumber(frame.label, signal.rate) - index, signal.rate);
    return {signal, 0, true};
}

bool isLegal(const SentFrame &frame, LtcRate rate)
{
    return frame.badDigitAt < 0 && isLabel(frame.label, rate);
}

} // namespace

std::bitset<bitsPerFrame> bitsOf(const SentFrame &frame, LtcRate rate)
{
    rate.dropFrame = frame.dropFlag;
    auto bits = frameBits(frame.label, rate, frame.userBits);
    if (frame.badDigitAt >= 0) {
        for (std::size_t bit = 0; bit < 4; ++bit)
            bits[static_cast<std::size_t>(frame.badDigitAt) + bit] = ((frame.badDigit >> bit) & 1) != 0;
        if (bits.count() % 2 == 1)
            bits.flip(phaseCorrectionBit(rate));
    }
    return bits;
}

WholeFrames wholeFrames(const LtcSignal &signal, double begin, double end)
{
    constexpr double rounding = 1e-9;
    const double rate = framesPerSecond(signal.rate);
    const auto first = static_cast<std::int64_t>(std::ceil(begin * rate + signal.offset - rounding));
    const auto last = static_cast<std::int64_t>(std::floor(end * rate + signal.offset + rounding));
    return {first, static_cast<int>(std::max<std::int64_t>(0, last - first))};
}

std::vector<Stretch> stretchesOf(const LtcSignal &signal, const FrameAt &frameAt, WholeFrames whole)
{
    std::vector<Stretch> stretches;
    std::int64_t expected = -1; // count of the frame that would go on
    bool expectedFlag = false;
    for (std::int64_t index = whole.first; index < whole.first + whole.count; ++index) {
        const SentFrame frame = frameAt(index);
        LtcRate rate = signal.rate;
        rate.dropFrame = rate.base == 30 && rate.ntsc && frame.dropFlag;
        if (!isLegal(frame, rate)) {
            stretches.push_back({std::nullopt, 1});
            expected = -1;
            continue;
        }
        const std::int64_t count = frameNumber(frame.label, rate);
        if (count == expected && frame.dropFlag == expectedFlag)
            ++stretches.back().frames;
        else
            stretches.push_back({lineOf(signal, frame, index), 1});
        expected = (count + 1) % framesPerDay(rate);
        expectedFlag = frame.dropFlag;
    }
    return stretches;
}

std::vector<Truth> rightLines(const std::vector<Stretch> &stretches)
{
    std::vector<Truth> right;
    int before = 0;
    for (std::size_t i = 0; i < stretches.size() && before < framesOfALine; ++i) {
        const bool runs = stretches[i].frames >= framesOfALine;
        const bool last = i + 1 == stretches.size();
        // One frame at the beginning, with a line or one more frame after it.
        const bool first = i == 0 && !last && (stretches[1].frames >= framesOfALine || stretches.size() == 2);
        if (stretches[i].line && (runs || last || first))
            right.push_back(*stretches[i].line);
        before += stretches[i].frames;
    }
    return right;
}

std::vector<Truth> onlyLine(const std::vector<Stretch> &stretches)
{
    if (stretches.size() != 1 || !stretches.front().line)
        return {};
    return {*stretches.front().line};
}

Verdict judge(const std::vector<Truth> &right, const std::optional<Answer> &answer, const std::string &fault)
{
    if (!answer)
        return Verdict::Refused;
    if (!fault.empty())
        return Verdict::Broken;
    for (const Truth &line : right) {
        if (isRight(line, *answer))
            return Verdict::Right;
    }
    return Verdict::Wrong;
}

std::string faultIn(const std::string &report, int sampleRate)
{
    QJsonParseError error{};
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(report), &error).object();
    if (error.error != QJsonParseError::NoError)
        return "no JSON: " + error.errorString().toStdString();
    for (const char *key : {"Timecode", "DropFrame", "NTSC", "FrameRateFound", "FrameRateBaseFound",
                            "ChannelFound", "SamplesSinceMidnight", "MeasuredFrameRate"}) {
        if (!object.contains(key))
            return std::string("no ") + key;
    }
    const LtcRate rate{object["FrameRateBaseFound"].toInt(), object["NTSC"].toBool(),
                       object["DropFrame"].toBool()};
    const double samples = object["SamplesSinceMidnight"].toDouble(-1.0);
    const double day = static_cast<double>(framesPerDay(rate)) * samplesPerFrame(rate, sampleRate);
    if (!(samples >= 0.0 && samples < day))
        return "samples outside the day: " + std::to_string(samples);
    const double measured = object["MeasuredFrameRate"].toDouble();
    constexpr double tolerated = 0.15;
    if (!(std::abs(measured / framesPerSecond(rate) - 1.0) <= tolerated))
        return "measured " + std::to_string(measured) + " frames/s";
    return {};
}

} // namespace testrecordings

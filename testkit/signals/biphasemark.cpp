// SPDX-License-Identifier: MIT
#include "testkit/signals/biphasemark.h"

#include "testkit/signals/steps.h"

#include <cmath>
#include <numbers>

namespace testsignals
{

namespace
{

/// Frames that a machine has played by a given time.
class FrameClock
{
public:
    FrameClock(double rate, const Transport &machine) : framesPerSecond(rate), transport(machine) {}

    double framesAt(double seconds) const
    {
        return framesPerSecond * (seconds * (1.0 + transport.deviation) +
                                  swing(seconds, transport.wowDepth, transport.wowFrequency) +
                                  swing(seconds, transport.flutterDepth, transport.flutterFrequency));
    }

    /// The time at which \a frames have been played.
    double secondsAt(double frames) const
    {
        double seconds = frames / framesPerSecond / (1.0 + transport.deviation);
        // The swings are small, so that this comes closer by a factor of more than five in each round.
        constexpr int rounds = 16;
        for (int i = 0; i < rounds; ++i)
            seconds -= (framesAt(seconds) - frames) / framesPerSecond / (1.0 + transport.deviation);
        return seconds;
    }

private:
    static double swing(double seconds, double depth, double frequency)
    {
        const double angular = 2 * std::numbers::pi * frequency;
        return depth / angular * (1.0 - std::cos(angular * seconds));
    }

    double framesPerSecond;
    Transport transport;
};

std::bitset<bitsPerFrame> frameBits(std::int64_t number, const LtcSignal &signal, const FrameHabits &habits)
{
    const auto count = static_cast<std::uint32_t>(number);
    const std::uint32_t userBits =
        habits.userBitsChange ? signal.userBits + count * 0x9E3779B9U : signal.userBits;
    std::bitset<bitsPerFrame> bits = frameBits(timeOfFrame(number, signal.rate), signal.rate, userBits);
    if (habits.parityWrong)
        bits.flip(phaseCorrectionBit(signal.rate));
    return bits;
}

} // namespace

std::size_t phaseCorrectionBit(LtcRate rate)
{
    return rate.base == 25 ? 59 : 27;
}

std::bitset<bitsPerFrame> frameBits(LtcTime time, LtcRate rate, std::uint32_t userBits)
{
    std::bitset<bitsPerFrame> bits;
    const auto put = [&bits](std::size_t first, std::size_t count, std::uint32_t value) {
        for (std::size_t i = 0; i < count; ++i)
            bits[first + i] = ((value >> i) & 1U) != 0;
    };
    const auto putNumber = [&put](std::size_t units, std::size_t tens, std::size_t tensBits, int value) {
        put(units, 4, static_cast<std::uint32_t>(value % 10));
        put(tens, tensBits, static_cast<std::uint32_t>(value / 10));
    };
    putNumber(0, 8, 2, time.frames);
    putNumber(16, 24, 3, time.seconds);
    putNumber(32, 40, 3, time.minutes);
    putNumber(48, 56, 2, time.hours);
    bits[10] = rate.dropFrame;
    for (std::size_t group = 0; group < 8; ++group)
        put(4 + 8 * group, 4, userBits >> (4 * group));

    constexpr std::uint32_t syncWord = 0xBFFC; // sent lowest bit first: 0011 1111 1111 1101
    put(64, 16, syncWord);

    bits[phaseCorrectionBit(rate)] = bits.count() % 2 == 1;
    return bits;
}

std::vector<float> biphaseMarkAudio(const LtcSignal &signal, const Transport &transport,
                                    const FrameHabits &habits)
{
    const std::int64_t start = frameNumber(signal.start, signal.rate);
    return biphaseMarkAudio(signal, transport, [&signal, &habits, start](std::int64_t index) {
        return frameBits(start + index, signal, habits);
    });
}

std::vector<float> biphaseMarkAudio(const LtcSignal &signal, const Transport &transport,
                                    const BitsOfFrame &bitsOf)
{
    const StepRenderer renderer(signal.sampleRate, signal.riseTime);
    const FrameClock clock(framesPerSecond(signal.rate), transport);
    const std::size_t count = sampleCount(signal);
    const double first = startFrame(signal);
    const std::int64_t origin = std::llround(first - signal.offset);
    const auto position = [&](double frame) { return clock.secondsAt(frame - first) * signal.sampleRate; };

    std::vector<double> changes;
    const double end = static_cast<double>(count) + renderer.reach();
    for (auto frame = static_cast<std::int64_t>(std::floor(first)) - 1;
         position(static_cast<double>(frame)) < end; ++frame) {
        const std::bitset<bitsPerFrame> bits = bitsOf(frame - origin);
        for (std::size_t bit = 0; bit < bitsPerFrame; ++bit) {
            // Every bit begins with a level change; a one has another in its middle.
            changes.push_back(position(static_cast<double>(frame) + static_cast<double>(bit) / bitsPerFrame));
            if (bits[bit])
                changes.push_back(
                    position(static_cast<double>(frame) + (static_cast<double>(bit) + 0.5) / bitsPerFrame));
        }
    }
    const double height = std::pow(10.0, signal.level / 20.0);
    return renderer.render(changes, count, signal.inverted ? -height : height);
}

} // namespace testsignals

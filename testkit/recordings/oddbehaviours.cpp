// SPDX-License-Identifier: MIT
#include "testkit/recordings/oddcases.h"

#include "testkit/signals/impairments.h"
#include "testkit/signals/othersounds.h"

#include <cmath>
#include <utility>

namespace testrecordings
{

namespace
{

using namespace testsignals;

/// The label \a count frames after midnight.
SentFrame frameOf(std::int64_t count, const LtcSignal &signal)
{
    return {timeOfFrame(count, signal.rate), signal.rate.dropFrame, signal.userBits};
}

std::int64_t startCount(const LtcSignal &signal)
{
    return frameNumber(signal.start, signal.rate);
}

/// The label \a index frames after the signal's start.
SentFrame labelAt(std::int64_t index, const LtcSignal &signal)
{
    return frameOf(startCount(signal) + index, signal);
}

std::int64_t floorOf(std::int64_t value, std::int64_t divisor)
{
    return value >= 0 ? value / divisor : -((divisor - 1 - value) / divisor);
}

/// Labels that follow from the signal's own: another one in its place.
template <typename Index>
FrameAt counting(const LtcSignal &signal, Index indexOf)
{
    return [&signal, indexOf](std::int64_t index) { return labelAt(indexOf(index), signal); };
}

/// The signal's own labels after \a change.
template <typename Change>
FrameAt changed(const LtcSignal &signal, Change change)
{
    return [&signal, change](std::int64_t index) {
        SentFrame frame = labelAt(index, signal);
        change(frame, index);
        return frame;
    };
}

Samples soundOf(const LtcSignal &signal, const FrameAt &frameAt, const Transport &transport = {})
{
    return biphaseMarkAudio(signal, transport,
                            [&](std::int64_t index) { return bitsOf(frameAt(index), signal.rate); });
}

std::vector<Stretch> stretchesIn(const LtcSignal &signal, const FrameAt &frameAt)
{
    return stretchesOf(signal, frameAt, wholeFrames(signal, 0.0, signal.duration));
}

/// Labels that run, jump and run again.
OddSignal running(const LtcSignal &signal, const FrameAt &frameAt)
{
    return {signal, soundOf(signal, frameAt), rightLines(stretchesIn(signal, frameAt))};
}

/// Labels that never run.
OddSignal notRunning(const LtcSignal &signal, const FrameAt &frameAt)
{
    return {signal, soundOf(signal, frameAt), onlyLine(stretchesIn(signal, frameAt))};
}

/// Labels that run but for a pause, which is no line.
OddSignal withPause(const LtcSignal &signal, const FrameAt &frameAt)
{
    const std::vector<Stretch> stretches = stretchesIn(signal, frameAt);
    bool runs = stretches.size() == 1;
    for (const Stretch &stretch : stretches)
        runs = runs || stretch.frames > 1;
    return {signal, soundOf(signal, frameAt), runs ? rightLines(stretches) : std::vector<Truth>()};
}

/// The label line itself is in order.
OddSignal inOrder(const LtcSignal &signal, Samples samples, bool speedKnown = true)
{
    return {signal, std::move(samples), {Truth{signal, 0, speedKnown}}};
}

OddSignal ordinary(LtcSignal signal, Random &random)
{
    return inOrder(signal, audioOf(signal, random));
}

/// A moment at 10 to 90 % of the recording. [s]
double anyMoment(const LtcSignal &signal, Random &random)
{
    return random.uniform(0.1, 0.9) * signal.duration;
}

/// The first frame that begins after such a moment.
std::int64_t anyFrame(const LtcSignal &signal, Random &random)
{
    return wholeFrames(signal, anyMoment(signal, random), signal.duration).first;
}

/// From some frame on the labels are \a distance later.
OddSignal labelsJump(const LtcSignal &signal, std::int64_t distance, Random &random)
{
    const std::int64_t jump = anyFrame(signal, random);
    return running(
        signal, counting(signal, [&](std::int64_t index) { return index + (index < jump ? 0 : distance); }));
}

/// Two recordings cut together, or the labels alone jump.
OddSignal jump(const LtcSignal &signal, std::int64_t distance, Random &random)
{
    if (random.chance(0.5))
        return labelsJump(signal, distance, random);
    LtcSignal other = anySignal(random, signal.rate);
    other.duration = signal.duration;
    other.start = timeOfFrame(startCount(signal) + distance, signal.rate);
    other.level = signal.level;
    const double moment = anyMoment(signal, random);
    Samples samples = audioOf(signal, random);
    continueWith(samples, audioOf(other, random), signal.sampleRate, moment);
    const Stretch before{Truth{signal, 0, true}, wholeFrames(signal, 0.0, moment).count};
    const Stretch after{Truth{other, 0, true}, wholeFrames(other, moment, signal.duration).count};
    return {signal, std::move(samples), rightLines({before, after})};
}

std::int64_t anyDistance(const LtcSignal &signal, Random &random)
{
    constexpr double farthest = 600.0; // [s]
    return static_cast<std::int64_t>(std::pow(random.uniform(), 3.0) * farthest * signal.rate.base) + 2;
}

/// Every so many frames the labels go \a step too far.
OddSignal nowAndThen(const LtcSignal &signal, std::int64_t step, Random &random)
{
    const int every = random.integer(8, 3 * signal.rate.base);
    const int phase = random.integer(0, every - 1);
    return running(signal, counting(signal, [&](std::int64_t index) {
                       return index + step * floorOf(index + phase, every);
                   }));
}

bool isNonDrop(LtcRate rate)
{
    return !rate.dropFrame;
}

/// The generator counts at one rate and runs at another.
OddSignal otherCount(LtcSignal signal, Random &random)
{
    LtcSignal counted = signal;
    do
        counted = anySignal(random, anyRate(random));
    while (counted.rate.base == signal.rate.base || counted.rate.dropFrame);
    counted.offset = signal.offset;
    const FrameAt frameAt = counting(counted, [](std::int64_t index) { return index; });
    const std::vector<Stretch> stretches = stretchesIn(signal, frameAt);
    OddSignal result{signal, soundOf(signal, frameAt), rightLines(stretches)};
    // A machine that plays the counted rate at another speed sends the same.
    constexpr double fastest = 0.13;
    const double speed = framesPerSecond(signal.rate) / framesPerSecond(counted.rate);
    if (std::abs(speed - 1.0) <= fastest) {
        if (stretches.size() > 1)
            result.right.clear();
        result.right.push_back({counted, 0, false});
    }
    return result;
}

OddSignal held(LtcSignal signal, Random &random)
{
    const int times = random.integer(2, 3);
    const int phase = random.integer(0, times - 1);
    return notRunning(signal,
                      counting(signal, [&](std::int64_t index) { return floorOf(index + phase, times); }));
}

/// Eight decimal digits as user bits.
std::uint32_t digits(std::int64_t number)
{
    std::uint32_t bits = 0;
    for (int group = 0; group < 8; ++group, number /= 10)
        bits |= static_cast<std::uint32_t>(number % 10) << (4 * group);
    return bits;
}

/// Another clock in the user bits, whose seconds change on the same frame as the timecode's or on another.
OddSignal userBitClock(LtcSignal signal, Random &random)
{
    const bool sameFrame = random.chance(0.5);
    const std::int64_t shift = random.integer(-3600, 3600) * signal.rate.base +
                               (sameFrame ? 0 : random.integer(1, signal.rate.base - 1));
    const bool withFrames = random.chance(0.3);
    return running(signal, changed(signal, [&](SentFrame &frame, std::int64_t index) {
                       const LtcTime clock = timeOfFrame(startCount(signal) + index + shift, signal.rate);
                       const std::int64_t seconds = (clock.hours * 100 + clock.minutes) * 100 + clock.seconds;
                       frame.userBits = digits(seconds * 100 + (withFrames ? clock.frames : 0));
                   }));
}

/// A date in the user bits, which changes at the timecode's midnight or on any frame.
OddSignal userBitDate(LtcSignal signal, Random &random)
{
    const std::int64_t change = anyFrame(signal, random);
    if (random.chance(0.5))
        signal.start = timeOfFrame(-change, signal.rate);
    const int day = random.integer(1, 27);
    const int monthAndYear = random.integer(1, 12) * 10000 + random.integer(2000, 2030);
    return running(signal, changed(signal, [&](SentFrame &frame, std::int64_t index) {
                       frame.userBits = digits((day + (index < change ? 0 : 1)) * 1'000'000 + monthAndYear);
                   }));
}

OddSignal randomUserBits(LtcSignal signal, Random &random)
{
    const std::uint64_t seed = random.bits();
    return running(signal, changed(signal, [&](SentFrame &frame, std::int64_t index) {
                       frame.userBits = static_cast<std::uint32_t>(
                           Random(seed + static_cast<std::uint64_t>(index) * 77).bits());
                   }));
}

OddSignal illegalLabels(LtcSignal signal, Random &random)
{
    enum { Hours, Minutes, Seconds, Frames, Digit };
    const int kind = random.integer(Hours, Digit);
    constexpr int unitsAt[]{16, 32, 48}; // seconds, minutes, hours
    const int badDigitAt = unitsAt[random.integer(0, 2)];
    const int badDigit = random.integer(10, 15);
    return notRunning(signal, changed(signal, [&](SentFrame &frame, std::int64_t) {
                          LtcTime &label = frame.label;
                          label.hours = kind == Hours ? 24 + label.hours % 16 : label.hours;
                          label.minutes = kind == Minutes ? 60 + label.minutes % 20 : label.minutes;
                          label.seconds = kind == Seconds ? 60 + label.seconds % 20 : label.seconds;
                          label.frames = kind == Frames ? 30 + label.frames % 10 : label.frames;
                          if (kind == Digit) {
                              frame.badDigitAt = badDigitAt;
                              frame.badDigit = badDigit;
                          }
                      }));
}

bool hasNoDropCount(LtcRate rate)
{
    return rate.base != 30 || !rate.ntsc;
}

bool isNonDrop2997(LtcRate rate)
{
    return rate.base == 30 && rate.ntsc && !rate.dropFrame;
}

/// 29.97 with the flag counts labels that drop-frame leaves out. Flag and count contradict each other, and
/// nothing shows which is true.
OddSignal flagOverAMinute(LtcSignal signal, Random &random)
{
    const LtcTime minute{random.integer(0, 23), 10 * random.integer(0, 5) + random.integer(1, 9), 0, 0};
    signal.start = timeOfFrame(frameNumber(minute, signal.rate) - anyFrame(signal, random), signal.rate);
    const auto setFlag = [](SentFrame &frame, std::int64_t) { frame.dropFlag = true; };
    OddSignal result = inOrder(signal, soundOf(signal, changed(signal, setFlag)));
    LtcSignal asFlagged = signal;
    asFlagged.rate.dropFrame = true;
    if (isLabel(startTime(signal), asFlagged.rate)) {
        asFlagged.start = startTime(signal);
        asFlagged.offset = std::remainder(startFrame(signal), 1.0);
        result.right.push_back({asFlagged, 0, true});
    }
    return result;
}

OddSignal atSpeed(const LtcSignal &signal, double speed)
{
    return {signal, biphaseMarkAudio(signal, Transport{.deviation = speed - 1.0}), {}};
}

/// 48, 50 or 60 frames a second, counted through or in pairs.
OddSignal highFrameRate(LtcSignal signal, Random &random)
{
    const bool pairs = random.chance(0.5);
    const std::int64_t fullRate = std::int64_t{2} * signal.rate.base;
    const FrameAt frameAt = [&](std::int64_t index) {
        const std::int64_t count = 2 * startCount(signal) + index + fullRate;
        SentFrame frame = frameOf(count / fullRate * signal.rate.base, signal);
        const std::int64_t inSecond = count % fullRate;
        frame.label.frames = static_cast<int>(pairs ? inSecond / 2 : inSecond);
        if (frame.label.frames >= 40) { // the third bit of the tens is where the flag is
            frame.label.frames -= 40;
            frame.dropFlag = true;
        }
        return frame;
    };
    return {signal, soundOf(signal, frameAt, {.deviation = 1.0}), {}};
}

OddSignal twoTimecodes(LtcSignal signal, Random &random)
{
    LtcSignal other = anySignal(random, random.chance(0.7) ? signal.rate : anyRate(random));
    other.duration = signal.duration;
    OddSignal result = ordinary(signal, random);
    addAtRatio(result.samples, audioOf(other, random), random.uniform(0, 6));
    result.right.push_back({other, 0, true});
    return result;
}

OddSignal polarityFlip(LtcSignal signal, Random &random)
{
    OddSignal result = ordinary(signal, random);
    const auto flip = static_cast<std::size_t>(anyMoment(signal, random) * signal.sampleRate);
    for (std::size_t n = flip; n < result.samples.size(); ++n)
        result.samples[n] = -result.samples[n];
    return result;
}

OddSignal wow(LtcSignal signal, Random &random)
{
    const Transport transport{.wowDepth = random.uniform(0.001, 0.01),
                              .wowFrequency = random.uniform(0.5, 2.0)};
    // The first sample's place is known to a tenth of a frame where the speed changes.
    signal.offset *= 0.75;
    return inOrder(signal, biphaseMarkAudio(signal, transport), false);
}

OddSignal dropouts(LtcSignal signal, Random &random)
{
    OddSignal result = ordinary(signal, random);
    dropOut(result.samples, random, signal.sampleRate, random.uniform(0.05, 0.6));
    return result;
}

/// Neither class of a base rate is near enough to distinguish it from the other.
OddSignal clockOff(LtcSignal signal, Random &random)
{
    const Transport transport{.deviation = random.uniform(400e-6, 600e-6) * (random.chance(0.5) ? 1 : -1)};
    return inOrder(signal, biphaseMarkAudio(signal, transport), false);
}

/// The file names a sample rate 0.1 % off, as when sound is pulled up or down.
OddSignal wrongSampleRate(LtcSignal signal, Random &random)
{
    const Transport transport{.deviation = random.chance(0.5) ? 1.001 - 1.0 : 1 / 1.001 - 1.0};
    return inOrder(signal, biphaseMarkAudio(signal, transport), false);
}

OddSignal programme(LtcSignal signal, Random &random)
{
    const auto &sounds = otherSounds();
    const auto &sound =
        sounds[static_cast<std::size_t>(random.integer(0, static_cast<int>(sounds.size()) - 1))];
    return {signal, sound.make(random, sampleCount(signal), signal.sampleRate), {}};
}

} // namespace

const std::vector<Behaviour> &allBehaviours()
{
    constexpr const char *itsLine = "its line";
    constexpr const char *firstLine =
        "the first line; where fewer than two whole frames are before the first jump, "
        "also the next line";
    constexpr const char *noLine = "nothing, unless all whole frames count up by one";
    constexpr const char *noSpeed = "nothing: no rate is near this speed";
    constexpr const char *baseRate = "its line; of the rate the base only";
    static const std::vector<Behaviour> behaviours{
        {"ordinary", 3, itsLine, ordinary},
        {"jump anywhere", 1, firstLine,
         [](LtcSignal signal, Random &random) {
             const auto day = static_cast<double>(framesPerDay(signal.rate));
             return jump(signal, static_cast<std::int64_t>(random.uniform(0.001, 0.999) * day), random);
         }},
        {"jump forwards", 1, firstLine,
         [](LtcSignal signal, Random &random) { return jump(signal, anyDistance(signal, random), random); }},
        {"jump backwards", 1, firstLine,
         [](LtcSignal signal, Random &random) { return jump(signal, -anyDistance(signal, random), random); }},
        {"jump by an hour", 1, firstLine,
         [](LtcSignal signal, Random &random) {
             const std::int64_t hour = framesPerDay(signal.rate) / 24;
             return jump(signal, random.chance(0.5) ? hour : -hour, random);
         }},
        {"jump by a frame", 1, firstLine,
         [](LtcSignal signal, Random &random) {
             return labelsJump(signal, random.chance(0.5) ? 1 : -1, random);
         }},
        {"frames repeated", 1, firstLine,
         [](LtcSignal signal, Random &random) { return nowAndThen(signal, -1, random); }},
        {"frames skipped", 1, firstLine,
         [](LtcSignal signal, Random &random) { return nowAndThen(signal, 1, random); }},
        {"seconds skipped", 1, firstLine,
         [](LtcSignal signal, Random &random) { return nowAndThen(signal, signal.rate.base, random); }},
        {"count of another rate", 1,
         "the line that its labels count, where the speed is within 13 %, base rate only; otherwise as a "
         "jump at each second",
         otherCount, isNonDrop},
        {"held", 1, noLine, held},
        {"frozen", 1, noLine,
         [](LtcSignal signal, Random &) {
             return notRunning(signal, [&](std::int64_t) { return labelAt(0, signal); });
         }},
        {"counting down", 1, noLine,
         [](LtcSignal signal, Random &) {
             return notRunning(signal, [&](std::int64_t index) { return labelAt(-index, signal); });
         }},
        {"paused, then running", 1,
         "nothing; where fewer than two whole frames are before the running line, the first label or that "
         "line",
         [](LtcSignal signal, Random &random) {
             const std::int64_t change = anyFrame(signal, random);
             return withPause(signal, [&](std::int64_t index) {
                 return labelAt(std::max<std::int64_t>(0, index - change), signal);
             });
         }},
        {"running, then paused", 1, firstLine,
         [](LtcSignal signal, Random &random) {
             const std::int64_t change = anyFrame(signal, random);
             return withPause(signal,
                              [&](std::int64_t index) { return labelAt(std::min(index, change), signal); });
         }},
        {"clock in user bits", 1, itsLine, userBitClock},
        {"date in user bits", 1, itsLine, userBitDate},
        {"random user bits", 1, itsLine, randomUserBits},
        {"illegal labels", 1, noLine, illegalLabels},
        {"flag at a rate without drop-frame", 1, "its line without drop-frame",
         [](LtcSignal signal, Random &) {
             return running(signal,
                            changed(signal, [&](SentFrame &frame, std::int64_t) { frame.dropFlag = true; }));
         },
         hasNoDropCount},
        {"flag with non-drop count", 1,
         "its line, drop-frame or not, since flag and count contradict each other", flagOverAMinute,
         isNonDrop2997},
        {"double speed", 1, noSpeed, [](LtcSignal signal, Random &) { return atSpeed(signal, 2.0); }},
        {"half speed", 1, noSpeed, [](LtcSignal signal, Random &) { return atSpeed(signal, 0.5); }},
        {"48, 50 or 60 frames a second", 1, noSpeed, highFrameRate, isNonDrop},
        {"two timecodes", 1, "either line", twoTimecodes},
        {"polarity flip", 1, itsLine, polarityFlip},
        {"wow", 1, baseRate, wow},
        {"dropouts", 1, itsLine, dropouts},
        {"clock 400 to 600 ppm off", 1, baseRate, clockOff},
        {"sample rate 0.1 % off", 1, baseRate, wrongSampleRate},
        {"starts late", 1, itsLine,
         [](LtcSignal signal, Random &random) {
             OddSignal result = ordinary(signal, random);
             keepOnly(result.samples, signal.sampleRate, anyMoment(signal, random), signal.duration);
             return result;
         }},
        {"ends early", 1, itsLine,
         [](LtcSignal signal, Random &random) {
             OddSignal result = ordinary(signal, random);
             keepOnly(result.samples, signal.sampleRate, 0.0, anyMoment(signal, random));
             return result;
         }},
        {"programme sound", 2, "nothing", programme, nullptr, false},
    };
    return behaviours;
}

} // namespace testrecordings

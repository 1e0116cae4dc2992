// SPDX-License-Identifier: MIT
#include "bench/ltc/readers.h"

#include "testkit/signals/impairments.h"

#include <ltc.h>

#include <array>
#include <cmath>
#include <memory>
#include <numbers>

namespace ltcbench
{

namespace
{

using namespace testsignals;

constexpr int leastAgreeing = 3;   // [frames]
constexpr int queuedFrames = 1024; // more than three seconds hold

struct FreeDecoder {
    void operator()(LTCDecoder *decoder) const { ltc_decoder_free(decoder); }
};

struct DecodedFrame {
    LtcTime time;
    bool dropFrame = false;
    double end =
        0.0; ///< [samples] where its successor begins; the library's start of a first frame is a guess
};

struct Run {
    int length = 0;      ///< [frames]
    double misfit = 0.0; ///< of the measured length of a frame to that of the rate, as a share
    Answer answer;
};

void bringToFullScale(Samples &samples)
{
    double mean = 0.0;
    for (const float sample : samples)
        mean += static_cast<double>(sample) / static_cast<double>(samples.size());
    for (float &sample : samples)
        sample -= static_cast<float>(mean);
    scaleToPeak(samples, -1.0);
}

std::vector<DecodedFrame> decode(Samples samples, int sampleRate)
{
    const std::unique_ptr<LTCDecoder, FreeDecoder> decoder(ltc_decoder_create(sampleRate / 25, queuedFrames));
    ltc_decoder_write_float(decoder.get(), samples.data(), samples.size(), 0);
    std::vector<DecodedFrame> frames;
    LTCFrameExt frame;
    while (ltc_decoder_read(decoder.get(), &frame) == 1) {
        SMPTETimecode time;
        ltc_frame_to_time(&time, &frame.ltc, 0);
        if (frame.reverse == 0) {
            frames.push_back({{time.hours, time.mins, time.secs, time.frame},
                              frame.ltc.dfbit != 0,
                              static_cast<double>(frame.off_end) + 1.0});
        }
    }
    return frames;
}

/// Whether \a frame counts on from \a first at \a rate, as many frames later as lie between them in time.
bool continues(const DecodedFrame &frame, const DecodedFrame &first, LtcRate rate, double frameLength)
{
    if (!isLabel(frame.time, rate) || frame.dropFrame != rate.dropFrame)
        return false;
    const std::int64_t day = framesPerDay(rate);
    const std::int64_t counted = frameNumber(frame.time, rate) - frameNumber(first.time, rate);
    const double passed = (frame.end - first.end) / frameLength;
    constexpr double jitter = 0.15;     // [frames] of the ends that the library reports
    constexpr double otherSpeed = 0.12; // of the nominal one: tape and film machines
    const double slack = jitter + otherSpeed * std::abs(passed);
    return std::abs(std::remainder(static_cast<double>(counted) - passed, static_cast<double>(day))) < slack;
}

/// The answer that follows from \a first and the length of a frame, measured from it to the last frame that
/// continues it.
Answer answerFrom(const std::vector<DecodedFrame> &frames, std::size_t first, std::size_t end, LtcRate rate,
                  int sampleRate)
{
    const double runLength = (frames[end - 1].end - frames[first].end) / static_cast<double>(end - 1 - first);
    const std::int64_t number = frameNumber(frames[first].time, rate);
    double measured = runLength;
    for (std::size_t later = frames.size() - 1; later >= end; --later) {
        const std::int64_t counted = frameNumber(frames[later].time, rate) - number;
        const double length = (frames[later].end - frames[first].end) / static_cast<double>(counted);
        if (continues(frames[later], frames[first], rate, runLength) && counted > 0 &&
            std::abs(length / runLength - 1) < 0.01) {
            measured = length;
            break;
        }
    }
    // Of two rates with the same counting the one nearer to the measured length is meant.
    LtcRate fitted = rate;
    fitted.ntsc = rate.dropFrame || (rate.base != 25 && sampleRate / measured < rate.base * 0.9995);
    const auto day = static_cast<double>(framesPerDay(fitted));
    const double last = static_cast<double>(number) + static_cast<double>(end - 1 - first);
    double start = std::fmod(last + 1.0 - frames[end - 1].end / measured, day);
    start = start < 0 ? start + day : start;
    const double position = start * samplesPerFrame(fitted, sampleRate);
    return {timeOfFrame(std::llround(start), fitted), fitted, 0, std::llround(position)};
}

/// The longest run of frames that count up one by one at \a rate.
Run longestRun(const std::vector<DecodedFrame> &frames, LtcRate rate, int sampleRate)
{
    Run best;
    const double frameLength = samplesPerFrame(rate, sampleRate);
    for (std::size_t first = 0; first < frames.size();) {
        std::size_t end = first;
        if (isLabel(frames[first].time, rate) && frames[first].dropFrame == rate.dropFrame) {
            const std::int64_t number = frameNumber(frames[first].time, rate);
            const auto follows = [&](std::size_t index) {
                const std::int64_t expected = number + static_cast<std::int64_t>(index - first);
                return continues(frames[index], frames[first], rate, frameLength) &&
                       (frameNumber(frames[index].time, rate) - expected) % framesPerDay(rate) == 0;
            };
            while (end < frames.size() && follows(end))
                ++end;
        }
        const auto length = static_cast<int>(end - first);
        if (length > best.length && length >= leastAgreeing) {
            best.length = length;
            best.answer = answerFrom(frames, first, end, rate, sampleRate);
            const double runLength = (frames[end - 1].end - frames[first].end) / (length - 1);
            best.misfit = std::abs(runLength / frameLength - 1);
        }
        first = std::max(end, first + 1);
    }
    return best;
}

Run longestRun(const Samples &samples, int sampleRate)
{
    constexpr std::array<LtcRate, 4> countings{
        {{24, false, false}, {25, false, false}, {30, false, false}, {30, true, true}}};
    const std::vector<DecodedFrame> frames = decode(samples, sampleRate);
    Run best;
    for (const LtcRate counting : countings) {
        const Run run = longestRun(frames, counting, sampleRate);
        if (run.length > best.length || (run.length == best.length && run.misfit < best.misfit))
            best = run;
    }
    return best;
}

using Filter = void (*)(Samples &samples, int sampleRate);

void unfiltered(Samples &, int)
{
}

void bandPass(Samples &samples, int sampleRate)
{
    highPass(samples, sampleRate, 500, 4);
    lowPass(samples, sampleRate, 3000);
}

/// Mean over half a bit, which keeps level changes where they are, without hum.
void halfBitMean(Samples &samples, int sampleRate)
{
    highPass(samples, sampleRate, 100);
    constexpr int halfBits = 4400; // [1/s] in the middle of all rates
    const auto length = static_cast<std::size_t>(sampleRate / halfBits);
    const Samples input = samples;
    double sum = 0.0;
    for (std::size_t n = 0; n < samples.size(); ++n) {
        sum += static_cast<double>(input[n]) - (n >= length ? static_cast<double>(input[n - length]) : 0.0);
        samples[n] = static_cast<float>(sum);
    }
}

void withoutHighs(Samples &samples, int sampleRate)
{
    highPass(samples, sampleRate, 100);
    lowPass(samples, sampleRate, 5000, 2);
}

/// Makes square waves of spikes again.
void integrate(Samples &samples, int sampleRate)
{
    constexpr double cutOff = 200.0; // [Hz] what is slower than that is forgotten
    const auto decay = static_cast<float>(std::exp(-2 * std::numbers::pi * cutOff / sampleRate));
    float sum = 0.0F;
    for (float &sample : samples)
        sample = sum = decay * sum + sample;
}

std::optional<Answer> read(const Case &recording, std::initializer_list<Filter> filters)
{
    Run best;
    for (std::size_t channel = 0; channel < recording.channels.size(); ++channel) {
        for (const Filter filter : filters) {
            Samples samples = recording.channels[channel];
            filter(samples, recording.sampleRate);
            bringToFullScale(samples);
            const Run run = longestRun(samples, recording.sampleRate);
            if (run.length > best.length) {
                best = run;
                best.answer.channel = static_cast<int>(channel);
            }
        }
    }
    return best.length == 0 ? std::nullopt : std::optional(best.answer);
}

} // namespace

ltcreader::Outcome outcomeOf(const Case &recording)
{
    const std::size_t channels = recording.channels.size();
    std::vector<float> interleaved(channels * recording.channels.front().size());
    for (std::size_t i = 0; i < interleaved.size(); ++i)
        interleaved[i] = recording.channels[i % channels][i / channels];
    ltcreader::MemorySource source(std::move(interleaved), static_cast<int>(channels), recording.sampleRate);
    return ltcreader::examine(source, {});
}

Answer answerOf(const ltcreader::Reading &reading)
{
    const timecode::Label &start = reading.start;
    return {{start.hours, start.minutes, start.seconds, start.frames},
            {reading.baseRate, reading.ntsc, reading.dropFrame},
            reading.channel,
            reading.samplesSinceMidnight};
}

std::optional<Answer> readWithOurs(const Case &recording)
{
    const ltcreader::Outcome outcome = outcomeOf(recording);
    return outcome.doubt == ltcreader::Doubt::None ? std::optional(answerOf(*outcome.likeliest))
                                                   : std::nullopt;
}

std::optional<Answer> readWithLibltc(const Case &recording)
{
    return read(recording, {unfiltered});
}

std::optional<Answer> readWithFilteredLibltc(const Case &recording)
{
    return read(recording, {unfiltered, bandPass, halfBitMean, withoutHighs, integrate});
}

void decodePlainly(const Case &recording)
{
    decode(recording.channels.front(), recording.sampleRate);
}

} // namespace ltcbench

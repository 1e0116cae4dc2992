// SPDX-License-Identifier: MIT
#include "testkit/signals/ltcsignal.h"

#include "testkit/signals/steps.h"

#include <ltc.h>

#include <cmath>
#include <memory>
#include <stdexcept>

namespace testsignals
{

namespace
{

constexpr double encoderSampleRate =
    768000.0; // [samples/s] at least; level changes fall on whole samples of it

struct FreeEncoder {
    void operator()(LTCEncoder *encoder) const { ltc_encoder_free(encoder); }
};
using Encoder = std::unique_ptr<LTCEncoder, FreeEncoder>;

LTC_TV_STANDARD standardOf(LtcRate rate)
{
    switch (rate.base) {
    case 24:
        return LTC_TV_FILM_24;
    case 25:
        return LTC_TV_625_50;
    default:
        return LTC_TV_525_60;
    }
}

Encoder makeEncoder(const LtcSignal &signal, double sampleRate, LtcTime first)
{
    Encoder encoder(ltc_encoder_create(sampleRate, framesPerSecond(signal.rate), standardOf(signal.rate),
                                       LTC_BGF_DONT_TOUCH));
    if (!encoder)
        throw std::runtime_error("libltc's encoder could not be made");
    ltc_encoder_set_filter(encoder.get(), 0.0);
    ltc_encoder_set_volume(encoder.get(), 0.0);

    SMPTETimecode time{};
    time.hours = static_cast<unsigned char>(first.hours);
    time.mins = static_cast<unsigned char>(first.minutes);
    time.secs = static_cast<unsigned char>(first.seconds);
    time.frame = static_cast<unsigned char>(first.frames);
    // The library takes every 29.97 for drop-frame and leaves labels out by the flag, so it is set before the
    // time.
    LTCFrame frame{};
    ltc_encoder_get_frame(encoder.get(), &frame);
    frame.dfbit = signal.rate.dropFrame ? 1U : 0U;
    ltc_encoder_set_frame(encoder.get(), &frame);
    ltc_encoder_set_timecode(encoder.get(), &time);
    ltc_encoder_set_user_bits(encoder.get(), signal.userBits);

    ltc_encoder_get_frame(encoder.get(), &frame);
    ltc_frame_set_parity(&frame, standardOf(signal.rate));
    ltc_encoder_set_frame(encoder.get(), &frame);
    return encoder;
}

} // namespace

std::size_t sampleCount(const LtcSignal &signal)
{
    return static_cast<std::size_t>(std::llround(signal.duration * signal.sampleRate));
}

double startFrame(const LtcSignal &signal)
{
    const auto day = static_cast<double>(framesPerDay(signal.rate));
    const double frame =
        std::fmod(static_cast<double>(frameNumber(signal.start, signal.rate)) + signal.offset, day);
    return frame < 0.0 ? frame + day : frame;
}

LtcTime startTime(const LtcSignal &signal)
{
    return timeOfFrame(std::llround(startFrame(signal)), signal.rate);
}

std::int64_t samplesSinceMidnight(const LtcSignal &signal)
{
    const double perFrame = samplesPerFrame(signal.rate, signal.sampleRate);
    const std::int64_t day = std::llround(static_cast<double>(framesPerDay(signal.rate)) * perFrame);
    return std::llround(startFrame(signal) * perFrame) % day;
}

std::vector<float> ltcAudio(const LtcSignal &signal)
{
    const StepRenderer renderer(signal.sampleRate, signal.riseTime);
    const double factor = std::ceil(encoderSampleRate / signal.sampleRate);
    const double frameLength = samplesPerFrame(signal.rate, signal.sampleRate);
    const std::size_t count = sampleCount(signal);

    // Whole frames earlier, so that what comes before the first sample is there for its filter.
    const double leadIn = std::ceil(renderer.reach() / frameLength);
    const double before = std::floor(startFrame(signal)) - leadIn;
    const double origin = (before - startFrame(signal)) * frameLength;
    const Encoder encoder = makeEncoder(signal, signal.sampleRate * factor,
                                        timeOfFrame(static_cast<std::int64_t>(before), signal.rate));

    std::vector<double> changes;
    std::int64_t encoded = 0;
    ltcsnd_sample_t previous = 0;
    while (origin + static_cast<double>(encoded) / factor < static_cast<double>(count) + renderer.reach()) {
        ltc_encoder_encode_frame(encoder.get());
        ltcsnd_sample_t *samples = nullptr;
        const int size = ltc_encoder_get_bufferptr(encoder.get(), &samples, 1);
        for (int i = 0; i < size; ++i) {
            // A change that belongs anywhere within sample i is placed at its start: half a sample early on
            // average.
            if (samples[i] != previous)
                changes.push_back(origin + (static_cast<double>(encoded + i) + 0.5) / factor);
            previous = samples[i];
        }
        encoded += size;
        ltc_encoder_inc_timecode(encoder.get());
    }
    // The parity bit makes every frame begin in the same direction, so the first change gives that of
    // `start`.
    const double height = std::pow(10.0, signal.level / 20.0);
    return renderer.render(changes, count, signal.inverted ? -height : height);
}

} // namespace testsignals

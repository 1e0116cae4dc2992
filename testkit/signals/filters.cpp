// SPDX-License-Identifier: MIT
#include "testkit/signals/filters.h"

#include <cmath>
#include <numbers>

namespace testsignals
{

namespace
{

/// Second-order section by the bilinear transform, in transposed direct form.
struct Section {
    double b0, b1, b2, a1, a2; // a0 is 1

    void process(Samples &samples) const
    {
        double s1 = 0.0;
        double s2 = 0.0;
        for (float &sample : samples) {
            const double x = static_cast<double>(sample);
            const double y = b0 * x + s1;
            s1 = b1 * x - a1 * y + s2;
            s2 = b2 * x - a2 * y;
            sample = static_cast<float>(y);
        }
    }
};

struct Angle {
    Angle(int sampleRate, double frequency, double quality)
        : cosine(std::cos(2 * std::numbers::pi * frequency / sampleRate)),
          alpha(std::sin(2 * std::numbers::pi * frequency / sampleRate) / (2 * quality))
    {
    }

    double cosine;
    double alpha;
};

/// Quality of the \a index-th pair of poles of a Butterworth filter.
double butterworthQuality(int order, int index)
{
    return 1.0 / (2.0 * std::cos(std::numbers::pi * (2 * index + 1) / (2.0 * order)));
}

} // namespace

void lowPass(Samples &samples, int sampleRate, double frequency, int order)
{
    if (frequency >= 0.49 * sampleRate)
        return;
    for (int i = 0; i < order / 2; ++i) {
        const Angle w(sampleRate, frequency, butterworthQuality(order, i));
        const double a0 = 1 + w.alpha;
        const double b = (1 - w.cosine) / 2 / a0;
        Section{b, 2 * b, b, -2 * w.cosine / a0, (1 - w.alpha) / a0}.process(samples);
    }
}

void highPass(Samples &samples, int sampleRate, double frequency, int order)
{
    for (int i = 0; i < order / 2; ++i) {
        const Angle w(sampleRate, frequency, butterworthQuality(order, i));
        const double a0 = 1 + w.alpha;
        const double b = (1 + w.cosine) / 2 / a0;
        Section{b, -2 * b, b, -2 * w.cosine / a0, (1 - w.alpha) / a0}.process(samples);
    }
}

void peak(Samples &samples, int sampleRate, double frequency, double quality, double gain)
{
    const Angle w(sampleRate, frequency, quality);
    const double amplitude = std::pow(10.0, gain / 40.0);
    const double a0 = 1 + w.alpha / amplitude;
    Section{(1 + w.alpha * amplitude) / a0, -2 * w.cosine / a0, (1 - w.alpha * amplitude) / a0,
            -2 * w.cosine / a0, (1 - w.alpha / amplitude) / a0}
        .process(samples);
}

void resonance(Samples &samples, int sampleRate, double frequency, double quality)
{
    const Angle w(sampleRate, frequency, quality);
    const double a0 = 1 + w.alpha;
    Section{w.alpha / a0, 0.0, -w.alpha / a0, -2 * w.cosine / a0, (1 - w.alpha) / a0}.process(samples);
}

void differentiate(Samples &samples, int sampleRate, double timeConstant)
{
    const double decay = std::exp(-1.0 / (timeConstant * sampleRate));
    double input = samples.empty() ? 0.0 : static_cast<double>(samples.front());
    double output = 0.0;
    for (float &sample : samples) {
        const double next = static_cast<double>(sample);
        output = decay * output + (1 + decay) / 2 * (next - input);
        input = next;
        sample = static_cast<float>(output);
    }
}

} // namespace testsignals

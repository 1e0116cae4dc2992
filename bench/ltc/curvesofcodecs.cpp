// SPDX-License-Identifier: MIT
#include "bench/ltc/curves.h"

#include "testkit/signals/impairments.h"
#include "testkit/signals/lossycodec.h"
#include "testkit/signals/noise.h"

#include <stdexcept>

namespace ltcbench
{

std::vector<Curve> curvesOfCodecs()
{
    std::vector<Curve> curves;
    for (const testsignals::LossyCodec &codec : testsignals::lossyCodecs()) {
        if (!testsignals::isAvailable(codec))
            continue;
        const auto make = [codec](double grade, Random &random) {
            LtcSignal signal = anySignal(random, anyRate(random));
            signal.offset = random.uniform(-0.3, 0.3); // leaves room for the delay of the codec
            Samples samples = audioOf(signal, random);
            testsignals::mixAtRatio(samples,
                                    testsignals::pinkNoise(random, samples.size(), signal.sampleRate), grade);
            auto decoded = testsignals::throughCodec(samples, signal.sampleRate, codec);
            if (!decoded)
                throw std::runtime_error("ffmpeg failed at " + codec.name);
            return monoCase(signal, std::move(*decoded), random);
        };
        curves.push_back({"Codecs",
                          codec.name + " after pink noise",
                          "dB, timecode over the rest",
                          {40, 20, 10, 4, 0, -4, -8, -12},
                          true,
                          make});
    }
    return curves;
}

} // namespace ltcbench

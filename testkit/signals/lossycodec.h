// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/filters.h"

#include <optional>
#include <string>

namespace testsignals
{

/// A codec as ffmpeg offers it.
struct LossyCodec {
    std::string name;    ///< for people: "AAC 128 kbit/s"
    std::string encoder; ///< ffmpeg's name of the encoder
    int bitRate;         ///< [bit/s] for one channel
    std::string suffix;  ///< of the file that it is stored in
};

const std::vector<LossyCodec> &lossyCodecs();

/// Whether the ffmpeg found on the search path has the encoder.
bool isAvailable(const LossyCodec &codec);

/// One channel through the encoder and back with the real ffmpeg; nothing when that fails. The result has the
/// length of the input; AC-3 comes out 256 samples late, since its container does not know the encoder's
/// delay.
std::optional<Samples> throughCodec(const Samples &samples, int sampleRate, const LossyCodec &codec);

} // namespace testsignals

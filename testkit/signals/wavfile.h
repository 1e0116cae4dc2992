// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace testsignals
{

/// How samples are stored.
enum class SampleFormat { Pcm8, Pcm16, Pcm24, Pcm32, Float32 };

/// The container of the samples: the usual WAV; with the extended header for many channels; for sizes beyond
/// 4 GiB.
enum class Container { Wav, WavExtensible, Rf64, W64 };

/// What a WAV file is made from.
struct WavFile {
    int sampleRate = 48000; ///< [samples/s]
    SampleFormat format = SampleFormat::Pcm16;
    Container container = Container::Wav;
    std::vector<std::vector<float>>
        channels; ///< samples of each channel, +-1 is full scale, all of equal length
    std::optional<std::int64_t>
        timeReference; ///< [samples] since midnight, makes a broadcast WAV; not for W64
};

/// Writes \a file to \a path with libsndfile; throws std::runtime_error when that fails.
void writeWav(const std::string &path, const WavFile &file);

} // namespace testsignals

// SPDX-License-Identifier: MIT
#include "testkit/signals/wavfile.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace testsignals
{

namespace
{

struct CloseFile {
    void operator()(SNDFILE *file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseFile>;

int formatOf(const WavFile &file)
{
    int format = 0;
    switch (file.container) {
    case Container::Wav:
        format = SF_FORMAT_WAV;
        break;
    case Container::WavExtensible:
        format = SF_FORMAT_WAVEX;
        break;
    case Container::Rf64:
        format = SF_FORMAT_RF64;
        break;
    case Container::W64:
        format = SF_FORMAT_W64;
        break;
    }
    switch (file.format) {
    case SampleFormat::Pcm8:
        return format | SF_FORMAT_PCM_U8;
    case SampleFormat::Pcm16:
        return format | SF_FORMAT_PCM_16;
    case SampleFormat::Pcm24:
        return format | SF_FORMAT_PCM_24;
    case SampleFormat::Pcm32:
        return format | SF_FORMAT_PCM_32;
    case SampleFormat::Float32:
        break;
    }
    return format | SF_FORMAT_FLOAT;
}

void setTimeReference(SNDFILE *file, std::int64_t samples)
{
    SF_BROADCAST_INFO info{};
    info.version = 1;
    info.time_reference_low = static_cast<std::uint32_t>(samples & 0xFFFFFFFF);
    info.time_reference_high = static_cast<std::uint32_t>(samples >> 32);
    if (sf_command(file, SFC_SET_BROADCAST_INFO, &info, sizeof info) != SF_TRUE)
        throw std::runtime_error("this container holds no time reference");
}

} // namespace

void writeWav(const std::string &path, const WavFile &file)
{
    SF_INFO info{};
    info.samplerate = file.sampleRate;
    info.channels = static_cast<int>(file.channels.size());
    info.format = formatOf(file);
    const SoundFile sound(sf_open(path.c_str(), SFM_WRITE, &info));
    if (!sound)
        throw std::runtime_error(path + ": " + sf_strerror(nullptr));
    sf_command(sound.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    if (file.timeReference)
        setTimeReference(sound.get(), *file.timeReference);

    const std::size_t channels = file.channels.size();
    const std::size_t frames = file.channels.front().size();
    constexpr std::size_t block = 4096;
    std::vector<float> interleaved(block * channels);
    for (std::size_t start = 0; start < frames; start += block) {
        const std::size_t count = std::min(block, frames - start);
        for (std::size_t i = 0; i < count * channels; ++i)
            interleaved[i] = file.channels[i % channels].at(start + i / channels);
        const auto wanted = static_cast<sf_count_t>(count);
        if (sf_writef_float(sound.get(), interleaved.data(), wanted) != wanted)
            throw std::runtime_error(path + ": " + sf_strerror(sound.get()));
    }
}

} // namespace testsignals

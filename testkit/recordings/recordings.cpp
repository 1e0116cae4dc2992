// SPDX-License-Identifier: MIT
#include "testkit/recordings/recordings.h"

#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"
#include "testkit/signals/othersounds.h"
#include "testkit/signals/wavfile.h"

#include <algorithm>
#include <array>

namespace testrecordings
{

namespace
{

using namespace testsignals;

Curve costKind(const std::string &name, const std::function<Case(Random &random)> &make)
{
    return {
        "Cost", "cost of " + name, "", {0}, false, [make](double, Random &random) { return make(random); }};
}

Curve costOfTimecode(const std::string &name, double ratio)
{
    return costKind(name, [ratio](Random &random) {
        const LtcSignal signal = anySignal(random, anyRate(random));
        Samples samples = audioOf(signal, random);
        addAtRatio(samples, whiteNoise(random, samples.size()), ratio);
        return monoCase(signal, std::move(samples), random);
    });
}

/// Three seconds of the sound \a soundName, another piece of it on each of \a channels channels.
Curve costOfSound(const std::string &name, const std::string &soundName, int channels)
{
    const auto &sounds = otherSounds();
    const auto sound = std::find_if(sounds.begin(), sounds.end(),
                                    [&](const OtherSound &other) { return other.name == soundName; });
    return costKind(name, [make = sound->make, channels](Random &random) {
        Case recording;
        const auto count = 3 * static_cast<std::size_t>(recording.sampleRate);
        for (int channel = 0; channel < channels; ++channel)
            recording.channels.push_back(make(random, count, recording.sampleRate));
        return recording;
    });
}

Case caseOf(const OtherSound &sound, Random &random)
{
    const double seconds = random.chance(0.7) ? 3.0 : random.uniform(0.2, 3.0);
    constexpr std::array<int, 4> otherRates{8000, 44100, 96000, 192000};
    const int sampleRate =
        random.chance(0.8) ? 48000 : otherRates[static_cast<std::size_t>(random.integer(0, 3))];
    Samples samples = sound.make(random, static_cast<std::size_t>(seconds * sampleRate), sampleRate);
    quantise(samples, random, random.chance(0.5) ? 16 : 24, random.chance(0.5));
    return {{std::move(samples)}, sampleRate, std::nullopt};
}

} // namespace

const std::vector<Curve> &allSounds()
{
    static const std::vector<Curve> sounds = [] {
        std::vector<Curve> all;
        for (const OtherSound &sound : otherSounds())
            all.push_back({"Without timecode", sound.name, "", {0}, false, [&sound](double, Random &random) {
                               return caseOf(sound, random);
                           }});
        return all;
    }();
    return sounds;
}

std::vector<Curve> costKinds()
{
    std::vector<Curve> kinds{costOfTimecode("clean timecode", 60.0),
                             costOfTimecode("timecode in white noise at -10 dB", -10.0),
                             costOfTimecode("timecode out of reach at -40 dB", -40.0)};
    for (const char *name :
         {"silence", "white noise", "hum", "speech", "music", "square", "biphase, random bits"})
        kinds.push_back(costOfSound(name, name, 1));
    kinds.push_back(costOfSound("eight channels of music", "music", 8));
    return kinds;
}

Case recordingOf(const Curve &curve, std::uint64_t seed, std::size_t grade, std::uint64_t file)
{
    constexpr std::uint64_t mostFiles = 1'000'000; // of a grade, so that no two share their random numbers
    Random random = Random::forCase(seed, curve.name, grade * mostFiles + file);
    return curve.make(curve.grades.at(grade), random);
}

std::string nameOfRecording(const Curve &curve, std::size_t grade, std::uint64_t file)
{
    return curve.name + "/" + std::to_string(grade) + "/" + std::to_string(file);
}

std::optional<Case> recordingNamed(const std::string &name, std::uint64_t seed)
{
    const std::size_t fileSlash = name.rfind('/');
    const std::size_t gradeSlash =
        fileSlash == std::string::npos ? fileSlash : name.rfind('/', fileSlash - 1);
    if (gradeSlash == std::string::npos || gradeSlash == 0)
        return std::nullopt;
    const std::size_t grade = numberFrom(name.substr(gradeSlash + 1, fileSlash - gradeSlash - 1));
    const std::uint64_t file = numberFrom(name.substr(fileSlash + 1));
    for (const auto *curves : {&allCurves(), &allSounds()}) {
        for (const Curve &curve : *curves) {
            if (curve.name == name.substr(0, gradeSlash) && grade < curve.grades.size())
                return recordingOf(curve, seed, grade, file);
        }
    }
    return std::nullopt;
}

void save(const Case &recording, const std::string &path)
{
    WavFile wav;
    wav.sampleRate = recording.sampleRate;
    wav.format = SampleFormat::Pcm24;
    wav.channels = recording.channels;
    writeWav(path, wav);
}

} // namespace testrecordings

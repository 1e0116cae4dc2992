// SPDX-License-Identifier: MIT
#include "bench/ltc/measurement.h"

#include "bench/ltc/figures.h"
#include "bench/ltc/libltcreader.h"
#include "bench/ltc/readers.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace ltcbench
{

namespace
{

constexpr int hopelessAfter = 2; // grades in a row without a right answer

double cpuMilliseconds(const std::function<void()> &work)
{
    const std::clock_t before = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
}

/// A kind of recording whose reading is timed.
struct CostKind {
    std::string name;
    std::function<Case(Random &random)> make;
};

CostKind timecodeInNoise(const std::string &name, double ratio)
{
    return {name, [ratio](Random &random) {
                const LtcSignal signal = anySignal(random, anyRate(random));
                Samples samples = audioOf(signal, random);
                testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), ratio);
                return monoCase(signal, std::move(samples), random);
            }};
}

/// The sound without timecode called \a name, null when there is none.
const testsignals::OtherSound *soundCalled(const std::string &name)
{
    const auto &sounds = testsignals::otherSounds();
    const auto found =
        std::find_if(sounds.begin(), sounds.end(),
                     [&name](const testsignals::OtherSound &sound) { return sound.name == name; });
    return found == sounds.end() ? nullptr : &*found;
}

/// Three seconds of \a sound, another piece of it on each of \a channels channels.
CostKind otherSound(const std::string &name, const testsignals::OtherSound &sound, int channels)
{
    return {name, [&sound, channels](Random &random) {
                Case recording;
                const auto count = 3 * static_cast<std::size_t>(recording.sampleRate);
                for (int channel = 0; channel < channels; ++channel)
                    recording.channels.push_back(sound.make(random, count, recording.sampleRate));
                return recording;
            }};
}

std::vector<CostKind> costKinds()
{
    std::vector<CostKind> kinds{timecodeInNoise("clean timecode", 60.0),
                                timecodeInNoise("timecode in white noise at -10 dB", -10.0),
                                timecodeInNoise("timecode out of reach at -40 dB", -40.0)};
    for (const char *name :
         {"silence", "white noise", "hum", "speech", "music", "square", "biphase, random bits"})
        kinds.push_back(otherSound(name, *soundCalled(name), 1));
    kinds.push_back(otherSound("eight channels of music", *soundCalled("music"), 8));
    return kinds;
}

} // namespace

Case recordingOf(const Curve &curve, std::uint64_t seed, std::size_t grade, int file)
{
    constexpr std::uint64_t mostFiles = 1'000'000; // of a grade, so that no two share their random numbers
    Random random = Random::forCase(seed, curve.name, grade * mostFiles + static_cast<std::uint64_t>(file));
    return curve.make(curve.grades.at(grade), random);
}

Case recordingOf(const testsignals::OtherSound &sound, std::uint64_t seed, int file)
{
    Random random = Random::forCase(seed, sound.name, static_cast<std::uint64_t>(file));
    const double seconds = random.chance(0.7) ? 3.0 : random.uniform(0.2, 3.0);
    constexpr std::array<int, 4> otherRates{8000, 44100, 96000, 192000};
    const int sampleRate =
        random.chance(0.8) ? 48000 : otherRates[static_cast<std::size_t>(random.integer(0, 3))];
    Samples samples = sound.make(random, static_cast<std::size_t>(seconds * sampleRate), sampleRate);
    testsignals::quantise(samples, random, random.chance(0.5) ? 16 : 24, random.chance(0.5));
    return {{std::move(samples)}, sampleRate, std::nullopt};
}

std::string nameOfRecording(const std::string &curveOrSound, std::size_t grade, int file)
{
    return curveOrSound + "/" + std::to_string(grade) + "/" + std::to_string(file);
}

std::optional<Answer> readWith(Reader reader, const Case &recording)
{
    switch (reader) {
    case Reader::Libltc:
        return readWithLibltc(recording);
    case Reader::FilteredLibltc:
        return readWithFilteredLibltc(recording);
    case Reader::Ours:
        break;
    }
    return readWithOurs(recording);
}

double Tally::rightShare() const
{
    return files() == 0 ? 0.0 : static_cast<double>(right) / files();
}

void Tally::add(const Case &recording, const std::optional<Answer> &answer)
{
    switch (judge(recording, answer)) {
    case Verdict::Right:
        ++right;
        if (recording.truth->speedKnown)
            positionErrors.push_back(positionError(*recording.truth, *answer));
        break;
    case Verdict::Wrong:
        ++wrong;
        break;
    case Verdict::Refused:
        ++refused;
        break;
    }
    if (answer && recording.truth) {
        otherRate += isRateRight(*recording.truth, *answer) ? 0 : 1;
        otherCount += answer->rate.dropFrame == recording.truth->signal.rate.dropFrame ? 0 : 1;
        otherChannel += answer->channel == recording.truth->channel ? 0 : 1;
    }
}

void Tally::add(const Tally &other)
{
    right += other.right;
    wrong += other.wrong;
    refused += other.refused;
    otherRate += other.otherRate;
    otherCount += other.otherCount;
    otherChannel += other.otherChannel;
    positionErrors.insert(positionErrors.end(), other.positionErrors.begin(), other.positionErrors.end());
}

CurveResult measureCurve(const Curve &curve, const Extent &extent, const ReportWrong &reportWrong)
{
    CurveResult result{curve, std::vector<Tallies>(curve.grades.size())};
    std::map<Reader, int> hopeless; // grades in a row without a right answer
    for (std::size_t grade = 0; grade < curve.grades.size(); ++grade) {
        Tallies &tallies = result.grades[grade];
        for (int file = 0; file < extent.filesPerGrade; ++file) {
            const Case recording = recordingOf(curve, extent.seed, grade, file);
            for (const Reader reader : allReaders) {
                if (reader != Reader::Ours && (!extent.compare || hopeless[reader] >= hopelessAfter))
                    continue;
                const std::optional<Answer> answer = readWith(reader, recording);
                tallies[reader].add(recording, answer);
                if (reader == Reader::Ours && judge(recording, answer) == Verdict::Wrong)
                    reportWrong(nameOfRecording(curve.name, grade, file), recording, *answer);
            }
        }
        for (const Reader reader : allReaders)
            hopeless[reader] = curve.graded && tallies[reader].right == 0 ? hopeless[reader] + 1 : 0;
    }
    return result;
}

SoundResult measureSound(const testsignals::OtherSound &sound, const Extent &extent,
                         const ReportWrong &reportWrong)
{
    SoundResult result{sound.name, {}};
    for (int file = 0; file < extent.filesPerSound; ++file) {
        const Case recording = recordingOf(sound, extent.seed, file);
        for (const Reader reader : allReaders) {
            if (reader != Reader::Ours && !extent.compare)
                continue;
            const std::optional<Answer> answer = readWith(reader, recording);
            result.tallies[reader].add(recording, answer);
            if (reader == Reader::Ours && answer)
                reportWrong(nameOfRecording(sound.name, 0, file), recording, *answer);
        }
    }
    return result;
}

std::vector<CostResult> measureCosts(const Extent &extent)
{
    std::vector<CostResult> results;
    for (const CostKind &kind : costKinds()) {
        CostResult result{kind.name};
        for (int file = 0; file < extent.filesPerGrade; ++file) {
            Random random =
                Random::forCase(extent.seed, "cost of " + kind.name, static_cast<std::uint64_t>(file));
            const Case recording = kind.make(random);
            result.ours += cpuMilliseconds([&] { readWithOurs(recording); }) / extent.filesPerGrade;
            result.libltc += cpuMilliseconds([&] { decodePlainly(recording); }) / extent.filesPerGrade;
        }
        results.push_back(result);
    }
    return results;
}

std::optional<double> halfPosition(const CurveResult &result, Reader reader)
{
    constexpr double half = 0.5;
    const auto share = [&](std::size_t grade) {
        const auto found = result.grades[grade].find(reader);
        return found == result.grades[grade].end() ? 0.0 : found->second.rightShare();
    };
    if (share(0) < half)
        return std::nullopt;
    for (std::size_t grade = 1; grade < result.grades.size(); ++grade) {
        if (share(grade) < half) {
            const double part = (share(grade - 1) - half) / (share(grade - 1) - share(grade));
            return static_cast<double>(grade - 1) + part;
        }
    }
    return static_cast<double>(result.grades.size() - 1);
}

std::optional<double> halfPoint(const CurveResult &result, Reader reader)
{
    const std::optional<double> position = halfPosition(result, reader);
    if (!position)
        return std::nullopt;
    const std::vector<double> &grades = result.curve.grades;
    const auto before = static_cast<std::size_t>(*position);
    const std::size_t after = std::min(before + 1, grades.size() - 1);
    return std::lerp(grades[before], grades[after], *position - static_cast<double>(before));
}

std::optional<Case> recordingNamed(const std::string &name, std::uint64_t seed)
{
    const std::size_t fileSlash = name.rfind('/');
    const std::size_t gradeSlash =
        fileSlash == std::string::npos ? fileSlash : name.rfind('/', fileSlash - 1);
    if (gradeSlash == std::string::npos || gradeSlash == 0)
        return std::nullopt;
    const std::string what = name.substr(0, gradeSlash);
    const auto grade = numberFrom<std::size_t>(name.substr(gradeSlash + 1, fileSlash - gradeSlash - 1));
    const auto file = numberFrom<int>(name.substr(fileSlash + 1));
    for (const Curve &curve : allCurves()) {
        if (curve.name == what && grade < curve.grades.size())
            return recordingOf(curve, seed, grade, file);
    }
    const testsignals::OtherSound *sound = soundCalled(what);
    return sound ? std::optional(recordingOf(*sound, seed, file)) : std::nullopt;
}

} // namespace ltcbench

// SPDX-License-Identifier: MIT
#include "testkit/faketools/moods.h"

#include <array>
#include <cstdio>

namespace moods
{

namespace
{

constexpr std::int64_t framesPerSecond = 25;
constexpr std::int64_t framesPerDay = std::int64_t{24} * 3600 * framesPerSecond;
constexpr std::int64_t samplesPerFrame = 48'000 / framesPerSecond;

std::string nameOf(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

std::int64_t frameOf(const std::string &media)
{
    return static_cast<std::int64_t>(hash(1, media) % framesPerDay);
}

} // namespace

std::uint64_t hash(std::uint64_t seed, const std::string &text)
{
    // FNV-1a, then the finaliser of SplitMix64: similar texts give unlike numbers.
    std::uint64_t value = 0xcbf29ce484222325ULL ^ seed * 0x9e3779b97f4a7c15ULL;
    for (const char letter : text)
        value = (value ^ static_cast<unsigned char>(letter)) * 0x100000001b3ULL;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
    return value ^ (value >> 31);
}

Mood moodFor(std::uint64_t seed, const std::string &media, const std::vector<std::string> &words)
{
    if (nameOf(media).starts_with("good"))
        return Mood::Normal;
    std::string all;
    for (const std::string &word : words)
        all += word + '\n';
    constexpr std::array outOfTwenty{Mood::Never, Mood::Twice, Mood::Garbage, Mood::Fails,
                                     Mood::Dies,  Mood::Late,  Mood::Late,    Mood::Late};
    const auto choice = static_cast<std::size_t>(hash(seed, all) % 20);
    return choice < outOfTwenty.size() ? outOfTwenty.at(choice) : Mood::Normal;
}

std::string timecodeOf(const std::string &media)
{
    const auto seconds = static_cast<int>(frameOf(media) / framesPerSecond);
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                  seconds % 60, static_cast<int>(frameOf(media) % framesPerSecond));
    return text.data();
}

std::int64_t samplesOf(const std::string &media)
{
    return frameOf(media) * samplesPerFrame;
}

bool holdsTimecode(const std::string &media)
{
    return nameOf(media).starts_with("good") || hash(2, media) % 4 != 0;
}

int audioStreamsOf(const std::string &media)
{
    return isWave(media) || nameOf(media).starts_with("good") ? 1 : static_cast<int>(hash(3, media) % 4);
}

bool isWave(const std::string &media)
{
    return media.ends_with(".wav") || media.ends_with(".WAV");
}

} // namespace moods

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// How the tools of one sequence behave, and what they say of a media file. Both the tools and the monkey
/// that checks on them ask here. Everything follows from a seed and a text.
namespace moods
{

enum class Mood {
    Normal,
    Late,    ///< does its work after a while
    Never,   ///< does nothing until it is killed; names its process "never"
    Twice,   ///< gives everything twice
    Garbage, ///< prints what cannot be parsed, and reports success
    Fails,   ///< reports a failure
    Dies     ///< is killed by a signal in the middle of its work
};

/// A number that follows from \a seed and \a text, evenly spread.
std::uint64_t hash(std::uint64_t seed, const std::string &text);

/// The mood of the tool that is started with \a words for the file \a media. Files whose name begins with
/// "good" always meet tools in normal mood.
Mood moodFor(std::uint64_t seed, const std::string &media, const std::vector<std::string> &words);

/// The timecode in the audio of the file \a media, at 25 frames a second; each file has its own.
std::string timecodeOf(const std::string &media);

/// The same as samples since midnight at 48 kHz.
std::int64_t samplesOf(const std::string &media);

/// Whether the file \a media has timecode at all.
bool holdsTimecode(const std::string &media);

/// How many audio streams \a media has. WAV files have one.
int audioStreamsOf(const std::string &media);

bool isWave(const std::string &media);

} // namespace moods

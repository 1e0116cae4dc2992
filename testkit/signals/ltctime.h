// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/// Signals for tests and the benchmark: linear timecode, what recordings do to it, and sound that is no
/// timecode.
namespace testsignals
{

/// The counting and the speed of a timecode.
struct LtcRate {
    int base = 25;     ///< frames counted in a second: 24, 25 or 30
    bool ntsc = false; ///< the real rate is base * 1000 / 1001
    bool dropFrame =
        false; ///< labels 00 and 01 are left out in each minute that ten does not divide; base 30 only
};

/// A timecode label.
struct LtcTime {
    int hours = 0;   ///< 0..23
    int minutes = 0; ///< 0..59
    int seconds = 0; ///< 0..59
    int frames = 0;  ///< 0..base - 1
};

double framesPerSecond(LtcRate rate);

/// Exact, as a real number: a frame at 29.97 frames per second and 48 kHz lasts 1601.6 samples.
double samplesPerFrame(LtcRate rate, int sampleRate);

std::int64_t framesPerDay(LtcRate rate);

/// Frames from midnight to \a time, left-out labels not counted. The label must exist.
std::int64_t frameNumber(LtcTime time, LtcRate rate);

/// The label of the frame \a number after midnight; any number, taken modulo one day.
LtcTime timeOfFrame(std::int64_t number, LtcRate rate);

/// "HH:MM:SS:FF", with ";" before the frames for drop-frame.
std::string text(LtcTime time, LtcRate rate);

} // namespace testsignals

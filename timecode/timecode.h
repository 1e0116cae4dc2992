// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace timecode
{

/// A label of one frame, as LTC carries it. Which labels exist depends on the frame rate.
struct Label {
    int hours = 0;   ///< 0 to 23
    int minutes = 0; ///< 0 to 59
    int seconds = 0; ///< 0 to 59
    int frames = 0;  ///< 0 to the nominal rate - 1

    friend bool operator==(const Label &, const Label &) = default;
};

/// The speed of NTSC [frames/s], 1000/1001 of \a nominal.
constexpr double ntscSpeed(double nominal)
{
    return nominal * 1000.0 / 1001.0;
}

/// How frames are counted and how long they last.
struct Rate {
    int base = 25;          ///< nominal frames per second: 24, 25 or 30
    bool ntsc = false;      ///< real rate is base * 1000 / 1001
    bool dropFrame = false; ///< labels 00 and 01 are left out each minute but the tenth; only with base 30

    /// The real rate [frames/s].
    double framesPerSecond() const;

    friend bool operator==(const Rate &, const Rate &) = default;
};

/// The rates of LTC, the slowest first; 29.97 stands for both ways of counting.
constexpr std::array<Rate, 5> rates{
    Rate{24, true, false}, {24, false, false}, {25, false, false}, {30, true, false}, {30, false, false}};

/// \a base frames a second as a fraction, as media tools write it: "25/1", or "30000/1001" of \a ntsc.
std::string fraction(std::int64_t base, bool ntsc);

/// Number of labels of one day: 2,589,408 with drop-frame, else 86,400 * base.
std::int64_t framesPerDay(const Rate &rate);

/// True when \a label exists at \a rate; a label left out by drop-frame does not.
bool isLabel(const Label &label, const Rate &rate);

/// Number of frames between midnight and the frame named \a label, which must exist at \a rate.
std::int64_t frameCount(const Label &label, const Rate &rate);

/// The label of the frame that \a count frames after midnight begins; any \a count, taken modulo one day.
Label labelAt(std::int64_t count, const Rate &rate);

/// Samples at \a sampleRate [Hz] from midnight to \a frames (whole and part) frames after it, to the nearest
/// sample and modulo one day of labels.
std::int64_t samplesAt(double frames, const Rate &rate, int sampleRate);

/// "HH:MM:SS:FF", with ";" before the frames for drop-frame.
std::string toText(const Label &label, bool dropFrame);

} // namespace timecode

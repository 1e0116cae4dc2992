// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

/// Timecodes as numbers of frames since midnight.
namespace framecount
{

/// How a timecode counts.
struct Rate {
    int base = 0;           ///< frames that a second of timecode has, above 0
    bool ntsc = false;      ///< runs at base x 1000 / 1001
    bool dropFrame = false; ///< leaves numbers out; only with ntsc and a base of 30 or 60

    double framesPerSecond() const { return ntsc ? base * 1000.0 / 1001.0 : base; }
    bool operator==(const Rate &) const = default;
};

/// The rate of a picture that runs at \a fraction, such as "30000/1001"; none where it is not that of a
/// timecode: not near a whole number of frames, or near one x 1000 / 1001.
std::optional<Rate> pictureRate(const QString &fraction);

/// Frames from midnight to \a timecode, "HH:MM:SS:FF" with any mark before the frames; none where it is no
/// timecode of \a rate.
std::optional<qint64> fromText(const QString &timecode, const Rate &rate);

/// The timecode \a frames after midnight, modulo 24 hours; with ";" before the frames where numbers are left
/// out.
QString toText(qint64 frames, const Rate &rate);

/// \a timecode, which counts at \a from, with its frames counted at \a to; the time of day of its second
/// stays. Empty where it is none.
QString atRate(const QString &timecode, const Rate &from, const Rate &to);

} // namespace framecount

// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tooladapter
{

/// Frames per second as a fraction, as the tools write it: "30000/1001", "25/1", "25".
struct FrameRate {
    long numerator = 0;
    long denominator = 1;

    /// The rate that \a text names; an invalid rate for anything else, "0" and "0/0" included,
    /// and for rates above 1000, which the tools print for damaged files.
    static FrameRate fromText(std::string_view text);

    bool operator==(const FrameRate &) const = default;

    bool isValid() const { return numerator > 0 && denominator > 0; }
    double perSecond() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }

    /// How many frame numbers timecode counts in a second at this rate: 30 at 29.97.
    int nominal() const;

    /// Whether the rate is nearer to nominal() x 1000 / 1001 than to nominal() itself.
    bool isNtsc() const;

    std::string toText() const; ///< as a fraction, "25/1"
};

} // namespace tooladapter

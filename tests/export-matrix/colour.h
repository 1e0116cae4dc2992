// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace exportmatrix
{

/// A colour as a coder stores it, on the scale of 8 bits.
struct CodedColour {
    double luma = 0.0;   ///< 16 to 235, or 0 to 255 for the full range
    double blue = 128.0; ///< difference, around 128
    double red = 128.0;  ///< difference, around 128
};

/// A colour as a screen shows it, before its own transfer curve; each part 0 to 1.
struct ShownColour {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
};

/// How a player shows \a colour that was coded with \a matrix and \a range, in the media tool's words. Throws
/// std::runtime_error for a matrix that it does not know.
ShownColour shownColour(const CodedColour &colour, const QString &matrix, const QString &range);

/// The greatest difference of any part of two colours, 0 to 1.
double distance(const ShownColour &a, const ShownColour &b);

} // namespace exportmatrix

// SPDX-License-Identifier: MIT
#include "tests/export-matrix/colour.h"

#include <QPair>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace exportmatrix
{
namespace
{

/// The shares of red and blue in the luma.
QPair<double, double> sharesOf(const QString &matrix)
{
    if (matrix == "bt709")
        return {0.2126, 0.0722};
    if (matrix == "smpte170m" || matrix == "bt470bg")
        return {0.299, 0.114};
    if (matrix == "bt2020nc")
        return {0.2627, 0.0593};
    throw std::runtime_error("no matrix is known as \"" + matrix.toStdString() + '"');
}

} // namespace

ShownColour shownColour(const CodedColour &colour, const QString &matrix, const QString &range)
{
    const bool isFull = range == "pc";
    const double luma = isFull ? colour.luma / 255.0 : (colour.luma - 16.0) / 219.0;
    const double span = isFull ? 255.0 : 224.0;
    const auto [redShare, blueShare] = sharesOf(matrix);
    const double red = luma + 2.0 * (1.0 - redShare) * (colour.red - 128.0) / span;
    const double blue = luma + 2.0 * (1.0 - blueShare) * (colour.blue - 128.0) / span;
    return {red, (luma - redShare * red - blueShare * blue) / (1.0 - redShare - blueShare), blue};
}

double distance(const ShownColour &a, const ShownColour &b)
{
    return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

} // namespace exportmatrix

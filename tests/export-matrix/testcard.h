// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/colour.h"
#include "tests/export-matrix/pictureshape.h"

#include <QByteArray>
#include <QStringList>

#include <array>

/// A picture whose shape, colours and fields can be read back: a white disc in the middle of a grey ground,
/// four coloured patches that show which way is up, and a white block that crosses a dark strip.
namespace exportmatrix::testcard
{

/// A rectangle in shares of the picture's width and height.
struct Area {
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
};

struct Patch {
    Area area;
    ShownColour colour;
};

constexpr double discDiameter = 0.5; ///< of the shorter side of the picture as it is shown
constexpr Area strip{0.3, 0.82, 0.4, 0.12};
constexpr double blockWidth = 0.08;        ///< of the picture's width
constexpr double blockStart = 0.34;        ///< where its left side is at the beginning
constexpr double blockSpeed = 0.6;         ///< picture widths per second, to the right
constexpr double whiteLuma = 0.8;          ///< what is brighter is the disc or the block
constexpr double groundLuma = 0.2;         ///< what is darker is no part of the card
extern const std::array<Patch, 4> patches; ///< top left, top right, bottom left, bottom right

/// The card for \a shape without its block, as an image file of the kind PPM.
QByteArray image(const PictureShape &shape);

/// Inputs that make the media tool film the card at \a imagePath at \a frameRate for \a duration [s].
QStringList inputs(const PictureShape &shape, const QString &imagePath, const QString &frameRate,
                   double duration);

/// The filter that makes of the first two inputs the picture "[card]".
QString filter(const PictureShape &shape);

} // namespace exportmatrix::testcard

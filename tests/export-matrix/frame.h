// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/colour.h"

#include <QByteArray>
#include <QString>

namespace exportmatrix
{

/// One decoded picture, plane after plane as the media tool puts it out, seen upright.
class Frame
{
public:
    /// \a bytes are a picture of \a width x \a height in \a pixelFormat that must be turned by \a rotation
    /// [degrees clockwise] to stand upright. Throws std::runtime_error for a format that it does not know and
    /// for too few bytes.
    Frame(const QByteArray &bytes, const QString &pixelFormat, int width, int height, int rotation);

    int width() const { return isTurnedSideways() ? storedHeight : storedWidth; }
    int height() const { return isTurnedSideways() ? storedWidth : storedHeight; }

    /// The colour at column \a x and row \a y of the upright picture, both inside it.
    CodedColour colourAt(int x, int y) const;

    /// Its luma alone.
    double lumaAt(int x, int y) const;

    /// Size in bytes of a picture of \a width x \a height in \a pixelFormat.
    static int sizeOf(const QString &pixelFormat, int width, int height);

private:
    bool isTurnedSideways() const { return rotation % 180 != 0; }
    double sampleAt(int plane, int x, int y) const;

    QByteArray bytes;
    int storedWidth = 0;
    int storedHeight = 0;
    int rotation = 0;        ///< [degrees clockwise]
    int horizontalShift = 0; ///< [bits] by which colour planes are narrower
    int verticalShift = 0;   ///< [bits] by which colour planes are lower
    int bits = 8;            ///< of one sample; more than 8 take two bytes
};

} // namespace exportmatrix

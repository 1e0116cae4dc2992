// SPDX-License-Identifier: MIT
#include "tests/export-matrix/frame.h"

#include <QRegularExpression>

#include <cmath>
#include <stdexcept>

namespace exportmatrix
{
namespace
{

struct Layout {
    int horizontalShift = 0;
    int verticalShift = 0;
    int bits = 8;
    bool hasAlpha = false;
};

Layout layoutOf(const QString &pixelFormat)
{
    static const QRegularExpression known("^yuv(a?)j?(411|420|422|444)p(?:(10|12)le)?$");
    const QRegularExpressionMatch match = known.match(pixelFormat);
    if (!match.hasMatch())
        throw std::runtime_error("no pixel format is known as \"" + pixelFormat.toStdString() + '"');
    const QString sampling = match.captured(2);
    return {sampling == "444" ? 0 : (sampling == "411" ? 2 : 1), sampling == "420" ? 1 : 0,
            match.captured(3).isEmpty() ? 8 : match.captured(3).toInt(), !match.captured(1).isEmpty()};
}

int shifted(int size, int shift)
{
    return (size + (1 << shift) - 1) >> shift;
}

} // namespace

Frame::Frame(const QByteArray &bytes, const QString &pixelFormat, int width, int height, int rotation)
    : bytes(bytes), storedWidth(width), storedHeight(height), rotation(((rotation % 360) + 360) % 360)
{
    const Layout layout = layoutOf(pixelFormat);
    horizontalShift = layout.horizontalShift;
    verticalShift = layout.verticalShift;
    bits = layout.bits;
    if (bytes.size() < sizeOf(pixelFormat, width, height))
        throw std::runtime_error("the picture is not complete");
}

int Frame::sizeOf(const QString &pixelFormat, int width, int height)
{
    const Layout layout = layoutOf(pixelFormat);
    const int colour = shifted(width, layout.horizontalShift) * shifted(height, layout.verticalShift);
    return (width * height * (layout.hasAlpha ? 2 : 1) + 2 * colour) * (layout.bits > 8 ? 2 : 1);
}

double Frame::sampleAt(int plane, int x, int y) const
{
    int column = x;
    int row = y;
    if (rotation == 90) {
        column = y;
        row = storedHeight - 1 - x;
    } else if (rotation == 180) {
        column = storedWidth - 1 - x;
        row = storedHeight - 1 - y;
    } else if (rotation == 270) {
        column = storedWidth - 1 - y;
        row = x;
    }
    int offset = 0;
    int width = storedWidth;
    if (plane > 0) {
        width = shifted(storedWidth, horizontalShift);
        offset = storedWidth * storedHeight + (plane - 1) * width * shifted(storedHeight, verticalShift);
        column >>= horizontalShift;
        row >>= verticalShift;
    }
    const int position = offset + row * width + column;
    if (bits == 8)
        return static_cast<unsigned char>(bytes.at(position));
    const int low = static_cast<unsigned char>(bytes.at(2 * position));
    const int high = static_cast<unsigned char>(bytes.at(2 * position + 1));
    return (low + 256 * high) / std::ldexp(1.0, bits - 8);
}

double Frame::lumaAt(int x, int y) const
{
    return sampleAt(0, x, y);
}

CodedColour Frame::colourAt(int x, int y) const
{
    return {sampleAt(0, x, y), sampleAt(1, x, y), sampleAt(2, x, y)};
}

} // namespace exportmatrix

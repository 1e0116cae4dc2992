// SPDX-License-Identifier: MIT
#include "tests/export-matrix/testcard.h"

#include <cmath>

namespace exportmatrix::testcard
{
namespace
{

constexpr ShownColour ground{0.5, 0.5, 0.5};
constexpr ShownColour white{1.0, 1.0, 1.0};
constexpr ShownColour dark{0.3, 0.3, 0.3};

bool holds(const Area &area, double x, double y)
{
    return x >= area.left && x < area.left + area.width && y >= area.top && y < area.top + area.height;
}

/// The colour at the place (\a x, \a y), each 0 to 1, of a card of \a shape.
ShownColour colourAt(const PictureShape &shape, double x, double y)
{
    const double aspect = shape.displayAspect();
    const double radius = discDiameter / 2 * std::min(aspect, 1.0); // in heights of the picture
    if (std::hypot((x - 0.5) * aspect, y - 0.5) < radius)
        return white;
    if (holds(strip, x, y))
        return dark;
    for (const Patch &patch : patches) {
        if (holds(patch.area, x, y))
            return patch.colour;
    }
    return ground;
}

char stored(double part)
{
    return static_cast<char>(std::lround(part * 255));
}

QString number(double value)
{
    return QString::number(value, 'f', 4);
}

/// Tags that say nothing must say so: scaling sets them.
QString tag(const QString &text)
{
    return text.isEmpty() ? "unknown" : text;
}

} // namespace

const std::array<Patch, 4> patches{{
    {{0.04, 0.06, 0.16, 0.18}, {0.90, 0.10, 0.10}},
    {{0.80, 0.06, 0.16, 0.18}, {0.10, 0.85, 0.10}},
    {{0.04, 0.76, 0.16, 0.18}, {0.15, 0.15, 0.90}},
    {{0.80, 0.76, 0.16, 0.18}, {0.80, 0.60, 0.45}},
}};

QByteArray image(const PictureShape &shape)
{
    QByteArray bytes = QString("P6 %1 %2 255\n").arg(shape.width).arg(shape.height).toLatin1();
    bytes.reserve(bytes.size() + shape.width * shape.height * 3);
    for (int row = 0; row < shape.height; ++row) {
        for (int column = 0; column < shape.width; ++column) {
            const ShownColour colour =
                colourAt(shape, (column + 0.5) / shape.width, (row + 0.5) / shape.height);
            bytes += stored(colour.red);
            bytes += stored(colour.green);
            bytes += stored(colour.blue);
        }
    }
    return bytes;
}

QStringList inputs(const PictureShape &shape, const QString &imagePath, const QString &frameRate,
                   double duration)
{
    // Each field is a moment of its own.
    const int moments = shape.fields == Fields::Progressive ? 1 : 2;
    const QString rate =
        QString("%1/%2").arg(moments * frameRate.section('/', 0, 0).toInt()).arg(frameRate.section('/', 1));
    const QString block = QString("color=white:size=%1x%2:rate=%3:duration=%4")
                              .arg(std::lround(shape.width * blockWidth))
                              .arg(std::lround(shape.height * strip.height))
                              .arg(rate, number(duration));
    return {"-loop", "1",       "-framerate", rate,    "-t", number(duration),
            "-i",    imagePath, "-f",         "lavfi", "-i", block};
}

QString filter(const PictureShape &shape)
{
    QStringList steps{QString("[0:v][1:v]overlay=x='(%1+%2*t)*W':y='%3*H':format=gbrp")
                          .arg(number(blockStart), number(blockSpeed), number(strip.top))};
    if (shape.rotation == 90)
        steps += "transpose=cclock"; // turning it back makes it upright
    if (shape.rotation == 270)
        steps += "transpose=clock";
    if (shape.rotation == 180)
        steps += "hflip,vflip";
    QString matrix = shape.codedMatrix();
    steps += QString("scale=out_color_matrix=%1:out_range=%2:flags=accurate_rnd+full_chroma_int")
                 .arg(matrix.replace("bt2020nc", "bt2020"), shape.colours.range == "pc" ? "pc" : "tv");
    steps += "format=" + shape.pixelFormat;
    if (shape.fields != Fields::Progressive)
        steps +=
            QString("interlace=scan=%1:lowpass=off").arg(shape.fields == Fields::TopFirst ? "tff" : "bff");
    const int pixelWidth = shape.isTurnedSideways() ? shape.pixelHeight : shape.pixelWidth;
    const int pixelHeight = shape.isTurnedSideways() ? shape.pixelWidth : shape.pixelHeight;
    steps += QString("setsar=%1/%2").arg(pixelWidth).arg(pixelHeight);
    steps += QString("setparams=range=%1:color_primaries=%2:color_trc=%3:colorspace=%4")
                 .arg(tag(shape.colours.range), tag(shape.colours.primaries), tag(shape.colours.transfer),
                      tag(shape.colours.matrix));
    return steps.join(',') + "[card]";
}

} // namespace exportmatrix::testcard

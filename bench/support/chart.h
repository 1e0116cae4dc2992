// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

namespace bench
{

/// A line of a chart.
struct Series {
    QString name;
    QVector<QPointF> points; ///< x ascending
};

/// Values over a number of rows or files. The horizontal axis is logarithmic, the vertical one begins at 0.
struct Chart {
    QString title;
    QString horizontal; ///< what is counted along the horizontal axis
    QString vertical;   ///< what stands along the vertical axis, with its unit
    QVector<Series> series;
};

/// The charts side by side as an SVG picture. Each needs a point with x above 0.
QString toSvg(const QVector<Chart> &charts);

} // namespace bench

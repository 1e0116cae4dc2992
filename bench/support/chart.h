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

/// Values over a number of rows or files, or over time. The vertical axis begins at 0.
struct Chart {
    enum Scale { Logarithmic, Linear };

    QString title;
    QString horizontal; ///< what is counted along the horizontal axis
    QString vertical;   ///< what stands along the vertical axis, with its unit
    QVector<Series> series;
    Scale scale =
        Logarithmic; ///< of the horizontal axis; a linear one begins at 0 and shows no single points
};

/// The charts side by side as an SVG picture. On a logarithmic axis all x are above 0.
QString toSvg(const QVector<Chart> &charts);

} // namespace bench

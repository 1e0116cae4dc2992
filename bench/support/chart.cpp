// SPDX-License-Identifier: MIT
#include "bench/support/chart.h"

#include <QStringList>

#include <cmath>

namespace bench
{

namespace
{

constexpr double cellWidth = 420; // [pixels]
constexpr double plotWidth = 320;
constexpr double plotHeight = 180;
constexpr double left = 64; // of the axes in their cell
constexpr double top = 34;
constexpr double legendTop = 50; // below the axes
constexpr double legendLine = 16;

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

QString text(double x, double y, const char *anchor, int size, const QString &content)
{
    return QString(R"(<text x="%1" y="%2" text-anchor="%3" font-size="%4">%5</text>)")
               .arg(number(x), number(y), anchor, QString::number(size), content.toHtmlEscaped()) +
           '\n';
}

QString line(double x1, double y1, double x2, double y2, const QString &stroke)
{
    return QString(R"(<line x1="%1" y1="%2" x2="%3" y2="%4" stroke="%5"/>)")
               .arg(number(x1), number(y1), number(x2), number(y2), stroke) +
           '\n';
}

/// The next of 1, 2, 5, 10, 20, 50 ... at or above \a value.
double roundedUp(double value)
{
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (value <= step * power)
            return step * power;
    }
    return 10.0 * power;
}

struct Axes {
    bool isLinear;
    double least = 1e300;  ///< of x
    double most = 0.0;     ///< of x
    double highest = 1e-9; ///< of y

    explicit Axes(const Chart &chart) : isLinear(chart.scale == Chart::Linear)
    {
        for (const Series &series : chart.series) {
            for (const QPointF &point : series.points) {
                least = qMin(least, point.x());
                most = qMax(most, point.x());
                highest = qMax(highest, point.y());
            }
        }
        highest = roundedUp(highest);
        if (isLinear)
            most = roundedUp(most);
    }

    double x(double value) const
    {
        if (isLinear)
            return left + plotWidth * value / most;
        const double range = std::log(most / least);
        return left + (range > 0 ? plotWidth * std::log(value / least) / range : plotWidth / 2);
    }
    double y(double value) const { return top + plotHeight * (1.0 - value / highest); }
};

/// Values along the horizontal axis that get a label.
QVector<double> labelledValues(const Chart &chart, const Axes &axes)
{
    if (axes.isLinear)
        return {0.0, axes.most / 4, axes.most / 2, axes.most * 3 / 4, axes.most};
    QVector<double> values;
    for (const Series &series : chart.series) {
        for (const QPointF &point : series.points) {
            if (!values.contains(point.x()))
                values += point.x();
        }
    }
    return values;
}

QString grid(const Chart &chart, const Axes &axes)
{
    constexpr int parts = 4;
    QString svg = text(left, top - 14, "start", 11, chart.title + " [" + chart.vertical + ']');
    for (int i = 0; i <= parts; ++i) {
        const double value = axes.highest * i / parts;
        svg += line(left, axes.y(value), left + plotWidth, axes.y(value), "#ccc");
        svg += text(left - 6, axes.y(value) + 4, "end", 10, number(value));
    }
    const QVector<double> labelled = labelledValues(chart, axes);
    for (const double value : labelled)
        svg += text(axes.x(value), axes.y(0) + 16, "middle", 10, number(value));
    return svg + text(left + plotWidth / 2, axes.y(0) + 32, "middle", 11, chart.horizontal);
}

QString cell(const Chart &chart)
{
    static const QStringList colours{"#1f5fa8", "#c23b22", "#d98e04", "#3a8f4d",
                                     "#7a4fa3", "#5a5a5a", "#0fa3b1"};
    const Axes axes(chart);
    QString svg = grid(chart, axes);
    for (int i = 0; i < chart.series.size(); ++i) {
        const QString &colour = colours.at(i % colours.size());
        QStringList points;
        for (const QPointF &point : chart.series.at(i).points) {
            points += number(axes.x(point.x())) + ',' + number(axes.y(point.y()));
            if (!axes.isLinear) {
                svg += QString(R"(<circle cx="%1" cy="%2" r="3" fill="%3"/>)")
                           .arg(number(axes.x(point.x())), number(axes.y(point.y())), colour) +
                       '\n';
            }
        }
        svg += QString(R"(<polyline fill="none" stroke="%1" stroke-width="2" points="%2"/>)")
                   .arg(colour, points.join(' ')) +
               '\n';
        const double y = axes.y(0) + legendTop + i * legendLine;
        svg += line(left, y - 4, left + 24, y - 4, colour);
        svg += text(left + 30, y, "start", 11, chart.series.at(i).name);
    }
    return svg;
}

} // namespace

QString toSvg(const QVector<Chart> &charts)
{
    qsizetype legendLines = 0;
    for (const Chart &chart : charts)
        legendLines = qMax<qsizetype>(legendLines, chart.series.size());
    const double height = top + plotHeight + legendTop + static_cast<double>(legendLines) * legendLine;
    QString body;
    for (int i = 0; i < charts.size(); ++i)
        body += QString("<g transform=\"translate(%1,0)\">\n").arg(number(i * cellWidth)) +
                cell(charts.at(i)) + "</g>\n";
    return QString(
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%2\" viewBox=\"0 0 %1 %2\" "
               "font-family=\"sans-serif\" fill=\"#222\">\n"
               "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n")
               .arg(number(static_cast<double>(charts.size()) * cellWidth), number(height)) +
           body + "</svg>\n";
}

} // namespace bench

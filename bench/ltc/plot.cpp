// SPDX-License-Identifier: MIT
#include "bench/ltc/plot.h"

#include <cstdio>

namespace ltcbench
{

namespace
{

constexpr int columns = 3;
constexpr double plotWidth = 230; // of the axes, in pixels
constexpr double plotHeight = 110;
constexpr double cellWidth = 300;
constexpr double cellHeight = 195;
constexpr double left = 44; // of the axes in their cell
constexpr double top = 30;
constexpr double legendHeight = 40;

struct Style {
    Reader reader;
    const char *label;
    const char *colour;
    const char *dashes;
};
constexpr std::array<Style, 3> styles{
    {{Reader::FilteredLibltc, "libltc after the best filter", "#d98e04", "5 3"},
     {Reader::Libltc, "libltc", "#c23b22", "2 2"},
     {Reader::Ours, "LTCReader", "#1f5fa8", "none"}}};

std::string number(double value)
{
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.4g", value);
    return buffer.data();
}

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char letter : text) {
        if (letter == '&')
            result += "&amp;";
        else if (letter == '<')
            result += "&lt;";
        else
            result += letter;
    }
    return result;
}

std::string textAt(double x, double y, const char *anchor, int size, const std::string &text)
{
    return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" text-anchor=\"" + anchor +
           "\" font-size=\"" + std::to_string(size) + "\">" + escaped(text) + "</text>\n";
}

std::string lineFrom(double x1, double y1, double x2, double y2)
{
    return "<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) + "\" y2=\"" +
           number(y2) + "\" stroke=\"#ccc\"/>\n";
}

std::string cell(const CurveResult &result, double x0, double y0)
{
    const std::vector<double> &grades = result.curve.grades;
    // Grades stand at equal distances: some rise by steps, some by factors.
    const auto x = [&](std::size_t grade) {
        return x0 + left + plotWidth * static_cast<double>(grade) / static_cast<double>(grades.size() - 1);
    };
    const auto y = [&](double share) { return y0 + top + plotHeight * (1 - share); };

    std::string svg = textAt(x0 + left, y0 + 18, "start", 12, result.curve.name);
    for (const double share : {0.0, 0.5, 1.0}) {
        svg += lineFrom(x(0), y(share), x(grades.size() - 1), y(share));
        svg += textAt(x(0) - 5, y(share) + 4, "end", 10, number(100 * share) + " %");
    }
    const std::size_t step = grades.size() / 8 + 1;
    for (std::size_t grade = 0; grade < grades.size(); grade += step)
        svg += textAt(x(grade), y(0) + 14, "middle", 9, number(grades[grade]));
    svg += textAt(x0 + left + plotWidth / 2, y(0) + 29, "middle", 10, result.curve.unit);

    for (const Style &style : styles) {
        std::string points;
        for (std::size_t grade = 0; grade < grades.size(); ++grade) {
            const auto tally = result.grades[grade].find(style.reader);
            const double share = tally == result.grades[grade].end() ? 0.0 : tally->second.rightShare();
            points += number(x(grade)) + "," + number(y(share)) + " ";
        }
        svg += "<polyline fill=\"none\" stroke=\"" + std::string(style.colour) +
               "\" stroke-width=\"2\" stroke-dasharray=\"" + style.dashes + "\" points=\"" + points +
               "\"/>\n";
    }
    return svg;
}

} // namespace

std::string plotOf(const std::vector<CurveResult> &curves, const std::string &section)
{
    std::string body;
    double key = left;
    for (const Style &style : styles) {
        body += "<line x1=\"" + number(key) + "\" y1=\"20\" x2=\"" + number(key + 30) +
                "\" y2=\"20\" stroke=\"" + style.colour + "\" stroke-width=\"2\" stroke-dasharray=\"" +
                style.dashes + "\"/>\n";
        body += textAt(key + 36, 24, "start", 12, style.label);
        key += 220;
    }
    int cells = 0;
    for (const CurveResult &result : curves) {
        if (result.curve.section != section || !result.curve.graded)
            continue;
        const int row = cells / columns;
        const int column = cells % columns;
        body += cell(result, column * cellWidth, legendHeight + row * cellHeight);
        ++cells;
    }
    const int rows = (cells + columns - 1) / columns;
    const std::string width = number(columns * cellWidth);
    const std::string height = number(legendHeight + rows * cellHeight);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
           "\" viewBox=\"0 0 " + width + " " + height +
           "\" font-family=\"sans-serif\" fill=\"#222\">\n<rect width=\"100%\" height=\"100%\" "
           "fill=\"white\"/>\n" +
           body + "</svg>\n";
}

} // namespace ltcbench

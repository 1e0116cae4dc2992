// SPDX-License-Identifier: MIT
#include "tests/export-matrix/cardreading.h"

#include "tests/export-matrix/testcard.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace exportmatrix
{
namespace
{

/// Reads shares of white in a frame.
class Reader
{
public:
    Reader(const Frame &frame, bool isFullRange) : frame(frame), isFullRange(isFullRange) {}

    CardPlace place() const;
    double discWidth(const CardPlace &place) const;
    double discHeight(const CardPlace &place) const;
    CodedColour patch(const CardPlace &place, const testcard::Area &area) const;
    std::optional<Fields> fields(const CardPlace &place) const;

private:
    double whiteAt(int x, int y) const
    {
        const double luma = frame.lumaAt(x, y);
        return isFullRange ? luma / 255 : (luma - 16) / 219;
    }
    double blockAt(int row, int first, int last) const;

    const Frame &frame;
    bool isFullRange;
};

/// The length of the run of positions around \a middle for which \a holds, below \a size.
template <typename Predicate>
int runAround(int middle, int size, Predicate holds)
{
    int first = middle;
    while (first > 0 && holds(first - 1))
        --first;
    int last = middle;
    while (last + 1 < size && holds(last + 1))
        ++last;
    return holds(middle) ? last - first + 1 : 0;
}

CardPlace Reader::place() const
{
    // The middle column meets the ground at both ends, the middle row too.
    const int middleX = frame.width() / 2;
    const int middleY = frame.height() / 2;
    const auto isCardInRow = [&](int x) { return whiteAt(x, middleY) > testcard::groundLuma; };
    const auto isCardInColumn = [&](int y) { return whiteAt(middleX, y) > testcard::groundLuma; };
    CardPlace place;
    place.width = runAround(middleX, frame.width(), isCardInRow);
    place.height = runAround(middleY, frame.height(), isCardInColumn);
    if (place.width == 0 || place.height == 0)
        throw std::runtime_error("the middle of the picture is black");
    while (!isCardInRow(place.left))
        ++place.left;
    while (!isCardInColumn(place.top))
        ++place.top;
    return place;
}

double Reader::discWidth(const CardPlace &place) const
{
    const int y = place.top + place.height / 2;
    return runAround(place.left + place.width / 2, frame.width(),
                     [&](int x) { return whiteAt(x, y) > testcard::whiteLuma; });
}

double Reader::discHeight(const CardPlace &place) const
{
    const int x = place.left + place.width / 2;
    return runAround(place.top + place.height / 2, frame.height(),
                     [&](int y) { return whiteAt(x, y) > testcard::whiteLuma; });
}

CodedColour Reader::patch(const CardPlace &place, const testcard::Area &area) const
{
    // The inner quarter, away from what coders do to edges.
    const int left = place.left + static_cast<int>((area.left + area.width * 3 / 8) * place.width);
    const int top = place.top + static_cast<int>((area.top + area.height * 3 / 8) * place.height);
    const int columns = std::max(1, static_cast<int>(area.width / 4 * place.width));
    const int rows = std::max(1, static_cast<int>(area.height / 4 * place.height));
    CodedColour sum{0.0, 0.0, 0.0};
    for (int y = top; y < top + rows; ++y) {
        for (int x = left; x < left + columns; ++x) {
            const CodedColour colour = frame.colourAt(x, y);
            sum.luma += colour.luma;
            sum.blue += colour.blue;
            sum.red += colour.red;
        }
    }
    const double count = double(rows) * columns;
    return {sum.luma / count, sum.blue / count, sum.red / count};
}

/// Where the block begins in \a row, to a part of a pixel; -1 where it is not found.
double Reader::blockAt(int row, int first, int last) const
{
    constexpr double edge = 0.65; // half-way from the dark strip to the white block
    for (int x = first + 1; x < last; ++x) {
        const double before = whiteAt(x - 1, row);
        const double here = whiteAt(x, row);
        if (here >= edge)
            return before >= edge ? x : x - (here - edge) / (here - before);
    }
    return -1.0;
}

std::optional<Fields> Reader::fields(const CardPlace &place) const
{
    const int first = place.left + static_cast<int>((testcard::strip.left + 0.01) * place.width);
    const int last =
        place.left + static_cast<int>((testcard::strip.left + testcard::strip.width - 0.01) * place.width);
    const double inset = testcard::strip.height / 4;
    const int top = place.top + static_cast<int>((testcard::strip.top + inset) * place.height);
    const int bottom =
        place.top + static_cast<int>((testcard::strip.top + testcard::strip.height - inset) * place.height);

    std::array<std::vector<double>, 2> edges; // of even and odd rows
    for (int row = top; row < bottom; ++row)
        edges.at(static_cast<std::size_t>(row % 2)).push_back(blockAt(row, first, last));

    const double step = testcard::blockSpeed * place.width / 60; // what it goes in one field or more
    const auto isSteady = [step](const std::vector<double> &rows) {
        const auto [least, most] = std::minmax_element(rows.begin(), rows.end());
        return *least >= 0 && *most - *least < step / 3;
    };
    const auto mean = [](const std::vector<double> &rows) {
        double sum = 0.0;
        for (const double row : rows)
            sum += row;
        return sum / double(rows.size());
    };
    if (edges[0].empty() || edges[1].empty() || !isSteady(edges[0]) || !isSteady(edges[1]))
        return std::nullopt;
    const double lead = mean(edges[1]) - mean(edges[0]); // the later field shows the block farther right
    if (std::abs(lead) < step / 3)
        return Fields::Progressive;
    return lead > 0 ? Fields::TopFirst : Fields::BottomFirst;
}

} // namespace

CardReading readCard(const Frame &frame, bool isFullRange)
{
    const Reader reader(frame, isFullRange);
    CardReading reading;
    reading.place = reader.place();
    reading.discWidth = reader.discWidth(reading.place);
    reading.discHeight = reader.discHeight(reading.place);
    for (std::size_t i = 0; i < testcard::patches.size(); ++i)
        reading.patches.at(i) = reader.patch(reading.place, testcard::patches.at(i).area);
    reading.fields = reader.fields(reading.place);
    return reading;
}

} // namespace exportmatrix

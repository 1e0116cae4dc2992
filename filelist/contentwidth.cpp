// SPDX-License-Identifier: MIT
#include "filelist/contentwidth.h"

void ContentWidth::set(int row, int width)
{
    while (widths.size() <= row) {
        widths.append(0);
        ++rowsOfWidth[0];
    }
    if (widths.at(row) == width)
        return;
    forget(widths.at(row));
    widths[row] = width;
    ++rowsOfWidth[width];
}

void ContentWidth::move(int from, int to)
{
    if (from == to)
        return;
    const int width = widths.at(from);
    set(from, 0);
    set(to, width);
}

void ContentWidth::remove(int row, int count)
{
    const int end = qMin(row + count, static_cast<int>(widths.size()));
    if (row >= end)
        return;
    for (int i = row; i < end; ++i)
        forget(widths.at(i));
    widths.remove(row, end - row);
}

void ContentWidth::clear()
{
    widths.clear();
    rowsOfWidth.clear();
}

int ContentWidth::widest() const
{
    return rowsOfWidth.isEmpty() ? 0 : rowsOfWidth.lastKey();
}

void ContentWidth::forget(int width)
{
    const auto entry = rowsOfWidth.find(width);
    if (--*entry == 0)
        rowsOfWidth.erase(entry);
}

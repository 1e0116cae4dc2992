// SPDX-License-Identifier: MIT
#include "batch/openrows.h"

#include "filelist/linking.h"

#include <algorithm>
#include <utility>

void OpenRows::add(const FileData &file)
{
    Row row;
    if (linking::isWave(file))
        row.moment = file.lastModified.toMSecsSinceEpoch();
    rows += row;
}

void OpenRows::takeProbe(int row, int streams)
{
    rows[row].awaited = std::max(1, streams);
}

QVector<int> OpenRows::takeReading(int row)
{
    rows[row].awaited = std::max(0, rows[row].awaited - 1);
    return settle(row);
}

QVector<int> OpenRows::takeFailure(int row)
{
    rows[row].awaited = 0;
    return settle(row);
}

QVector<int> OpenRows::takeRest()
{
    QVector<int> rest;
    for (int row = 0; row < rows.size(); ++row) {
        if (!rows[row].isSettled)
            rest += row;
        rows[row].isSettled = true;
    }
    return rest;
}

QVector<int> OpenRows::settle(int row)
{
    QVector<int> together{row};
    if (rows[row].moment >= 0) {
        together.clear();
        for (int other = 0; other < rows.size(); ++other) {
            if (rows[other].moment == rows[row].moment)
                together += other;
        }
    }
    const bool isAnswered = std::all_of(together.cbegin(), together.cend(),
                                        [this](int other) { return rows[other].awaited == 0; });
    QVector<int> settled;
    for (const int other : std::as_const(together)) {
        if (!isAnswered || rows[other].isSettled)
            continue;
        rows[other].isSettled = true;
        settled += other;
    }
    return settled;
}

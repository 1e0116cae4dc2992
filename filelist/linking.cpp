// SPDX-License-Identifier: MIT
#include "filelist/linking.h"

#include <algorithm>
#include <cmath>

namespace linking
{

namespace
{

constexpr double durationTolerance = 0.05; // [s] exclusive; recorders end the files of a take a moment apart
constexpr double arithmeticError = 1e-9; // [s] keeps 5.00 and 4.95 apart, whose difference is no exact double

// Equal times give equal keys; files without a time share the key of the epoch, the comparison parts them
// again.
qint64 timeKey(const FileData &file)
{
    return file.lastModified.isValid() ? file.lastModified.toMSecsSinceEpoch() : 0;
}

} // namespace

bool isWave(const FileData &file)
{
    return file.suffix.compare(QLatin1String("wav"), Qt::CaseInsensitive) == 0;
}

bool recordedTogether(const FileData &first, const FileData &second)
{
    return isWave(first) && isWave(second) && first.lastModified == second.lastModified &&
           std::abs(first.duration - second.duration) < durationTolerance - arithmeticError;
}

QVector<int> siblings(const QVector<FileData> &files, int row)
{
    QVector<int> rows;
    for (int other = 0; other < files.size(); ++other) {
        if (other != row && recordedTogether(files.at(row), files.at(other)))
            rows.append(other);
    }
    return rows;
}

void Index::add(int row, const FileData &file)
{
    if (isWave(file))
        rowsByTime.insert(timeKey(file), row);
}

void Index::rebuild(const QVector<FileData> &files)
{
    rowsByTime.clear();
    for (int row = 0; row < files.size(); ++row)
        add(row, files.at(row));
}

QVector<int> Index::siblings(const QVector<FileData> &files, int row) const
{
    QVector<int> rows;
    const FileData &file = files.at(row);
    if (!isWave(file))
        return rows;
    const qint64 key = timeKey(file);
    for (auto it = rowsByTime.constFind(key); it != rowsByTime.constEnd() && it.key() == key; ++it) {
        if (*it != row && recordedTogether(file, files.at(*it)))
            rows.append(*it);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace linking

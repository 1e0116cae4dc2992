// SPDX-License-Identifier: MIT
#include "demo/reporttable.h"

#include <algorithm>
#include <utility>

namespace
{

QString layOutRow(const QStringList &cells, const QVector<int> &widths)
{
    QString line;
    for (int i = 0; i < cells.size(); ++i)
        line += cells.at(i).leftJustified(widths.at(i) + 2);
    return line.trimmed() + '\n';
}

} // namespace

QString layOutTable(const QStringList &header, const QVector<QStringList> &rows)
{
    QVector<int> widths;
    for (int i = 0; i < header.size(); ++i) {
        auto width = header.at(i).size();
        for (const QStringList &row : rows)
            width = std::max(width, row.value(i).size());
        widths += static_cast<int>(width);
    }

    QStringList ruler;
    for (const int width : std::as_const(widths))
        ruler += QString(width, '-');

    QString text = layOutRow(header, widths) + layOutRow(ruler, widths);
    for (const QStringList &row : rows)
        text += layOutRow(row, widths);
    return text;
}

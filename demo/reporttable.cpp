// SPDX-License-Identifier: MIT
#include "demo/reporttable.h"

#include <algorithm>

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
        int width = header.at(i).size();
        for (const QStringList &row : rows)
            width = std::max(width, row.value(i).size());
        widths += width;
    }

    QStringList ruler;
    for (const int width : qAsConst(widths))
        ruler += QString(width, '-');

    QString text = layOutRow(header, widths) + layOutRow(ruler, widths);
    for (const QStringList &row : rows)
        text += layOutRow(row, widths);
    return text;
}

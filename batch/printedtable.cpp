// SPDX-License-Identifier: MIT
#include "batch/printedtable.h"

#include <algorithm>

PrintedTable::PrintedTable(const QVector<Column> &columns)
{
    for (const Column &column : columns) {
        titles += column.title;
        widths += std::max(column.width, static_cast<int>(column.title.size()));
    }
}

QString PrintedTable::header() const
{
    QStringList ruler;
    for (const int width : widths)
        ruler += QString(width, '-');
    return line(titles) + line(ruler);
}

QString PrintedTable::line(const QStringList &cells) const
{
    QString text;
    for (int i = 0; i < cells.size(); ++i)
        text += cells.at(i).leftJustified(widths.value(i)) + "  ";
    while (text.endsWith(' '))
        text.chop(1);
    return text + '\n';
}

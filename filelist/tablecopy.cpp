// SPDX-License-Identifier: MIT
#include "filelist/tablecopy.h"

namespace
{

QString line(QStringList cells)
{
    for (QString &cell : cells) {
        for (const char separator : {'\t', '\n', '\r'})
            cell.replace(separator, ' ');
    }
    return cells.join('\t') + '\n';
}

} // namespace

QString tabSeparated(const QStringList &header, const QVector<QStringList> &rows)
{
    QString text = line(header);
    for (const QStringList &row : rows)
        text += line(row);
    return text;
}

// SPDX-License-Identifier: MIT
#include "filelist/filecell.h"

#include "filelist/celltexts.h"
#include "filelist/importedfiles.h"
#include "filelist/tablecolumns.h"

#include <utility>

FileCell::FileCell(const ImportedFiles &files, int row, int column, QString initText)
    : QTableWidgetItem(cellType), files(files), row(row), column(column), initText(std::move(initText))
{
}

QVariant FileCell::data(int role) const
{
    if (!files.contains(row)) // it is about to leave the table
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return shownText();
    case Qt::ToolTipRole: {
        const QString toolTip = shownToolTip();
        return toolTip.isEmpty() ? QVariant() : toolTip;
    }
    case Qt::TextAlignmentRole:
        return isCentred() ? QVariant(Qt::AlignCenter) : QVariant();
    default:
        return QTableWidgetItem::data(role);
    }
}

QString FileCell::shownText() const
{
    const FileData &file = files.record(row);
    const RowStatus &status = files.status(row);
    switch (column) {
    case NameColumn:
        return file.fileName;
    case DurationColumn:
        return status.fileTC == RowStatus::FileTC::Unprobed ? initText : celltexts::duration(file.duration);
    case FileTCColumn:
        return celltexts::fileTC(file, status, initText);
    default:
        return celltexts::audioTC(file, status, initText);
    }
}

QString FileCell::shownToolTip() const
{
    if (column == NameColumn)
        return files.record(row).absoluteFilePath;
    return column == AudioTCColumn ? celltexts::audioTCToolTip(files.record(row), files.status(row))
                                   : QString();
}

bool FileCell::isCentred() const
{
    return column == DurationColumn ||
           (column == FileTCColumn && files.status(row).fileTC != RowStatus::FileTC::Unprobed);
}

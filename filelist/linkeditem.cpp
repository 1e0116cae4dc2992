// SPDX-License-Identifier: MIT
#include "filelist/linkeditem.h"

#include "filelist/celltexts.h"
#include "filelist/tablecolumns.h"

#include <utility>

LinkedItem::LinkedItem(std::shared_ptr<const SharedLink> link)
    : QTableWidgetItem(cellType), link(std::move(link))
{
}

QTableWidgetItem *LinkedItem::clone() const
{
    return new LinkedItem(*this);
}

QVariant LinkedItem::data(int role) const
{
    const Link &latest = *link->latest;
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return celltexts::linkedTimecode(latest.timecode);
    if (role == Qt::ToolTipRole)
        return celltexts::linkedTimecodeToolTip(latest.result, latest.sourceName);
    return QTableWidgetItem::data(role);
}

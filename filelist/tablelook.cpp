// SPDX-License-Identifier: MIT
#include "filelist/tablelook.h"

#include "filelist/tablecolumns.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QTableWidget>

namespace
{

QString translated(const char *text)
{
    return QCoreApplication::translate("FileList", text);
}

} // namespace

void setTableLook(QTableWidget *table)
{
    table->setDragDropMode(QAbstractItemView::DropOnly);
    table->setDropIndicatorShown(true);

    table->setColumnCount(ColumnCount);
    table->setHorizontalHeaderLabels(
        {translated("File name"), translated("Duration"), translated("File TC"), translated("Audio TC")});
    // The sections are light grey under every desktop theme, so their text is dark under every theme.
    for (int column = 0; column < ColumnCount; ++column)
        table->horizontalHeaderItem(column)->setForeground(Qt::black);
    table->verticalHeader()->setVisible(false);
    QHeaderView *header = table->horizontalHeader();
    header->setStyleSheet("QHeaderView::section{background-color: lightgrey;border:none;font:normal;}"
                          "QHeaderView::section:checked{font: normal;}");
    header->setHighlightSections(false);
    header->setSectionResizeMode(NameColumn, QHeaderView::Stretch);

    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setStyleSheet("QTableView{selection-background-color: #f2ff4900;selection-color: white; "
                         "show-decoration-selected: 10}\n");
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setAlternatingRowColors(true);
    constexpr int audioTCWidth = 300; // [pixels]
    table->setColumnWidth(AudioTCColumn, audioTCWidth);

    table->setTextElideMode(Qt::ElideMiddle);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false); // Tab leads on to the next widget, the arrow keys move in the table
}

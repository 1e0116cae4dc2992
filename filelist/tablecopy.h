// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// \a header and \a rows as text that spreadsheets take: cells parted by tabs, a line each. Tabs and line
/// breaks inside a cell become blanks, so that no file name can break the table.
QString tabSeparated(const QStringList &header, const QVector<QStringList> &rows);

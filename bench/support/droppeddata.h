// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

class QAbstractScrollArea;

namespace bench
{

/// Drops the files and folders \a paths on \a table, as the desktop would.
void drop(const QStringList &paths, QAbstractScrollArea &table);

} // namespace bench

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What is said on the way, about \a done of \a total units of the work called \a what.
namespace progresstext
{

/// A bar for a terminal, without line end: share done and, after \a elapsed [s], the time left.
QString bar(const QString &what, int done, int total, double elapsed);

/// Whether a line is due where lines cannot be overwritten: each tenth gets one. \a before: the units done
/// when this was asked last.
bool isLineDue(int before, int done, int total);

/// That line.
QString line(const QString &what, int done, int total);

} // namespace progresstext

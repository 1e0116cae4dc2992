// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

/// What this program holds of the system, for tests that nothing is left behind. Linux only.
namespace ownprocesses
{

/// Process ids of all children, of every thread; ended ones that no one has waited for included.
QVector<qint64> children();

/// The name that the process \a id gives itself; empty when there is none any more.
QString nameOf(qint64 id);

/// Number of open files of this program.
int openFiles();

/// Memory of this program that is in use [KiB].
qint64 residentMemory();

} // namespace ownprocesses

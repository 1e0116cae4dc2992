// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// Where the external tools are.
namespace toolresolver
{

/// Path of the first executable file named \a program in \a folders, taken in order; empty when there is
/// none. Folders that are not absolute are ignored, so that nothing is started out of the working
/// directory.
QString find(const QString &program, const QStringList &folders);

/// What to start for the tool \a program: its absolute path when it is in the program search path or, failing
/// that, in the application's own folder; the bare name when it is in neither.
QString resolve(const QString &program);

} // namespace toolresolver

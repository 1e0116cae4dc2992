// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QString>
#include <QStringList>

/// What the main window and its message boxes say.
namespace windowtexts
{

/// Lines of the stream list for \a file: its picture stream, then its sound streams. MXF files record no
/// channel numbers, as their streams hold one channel each.
QStringList streamLines(const FileData &file);

/// Message after an export in which the files \a names failed: four names a line.
QString failedExports(const QStringList &names);

/// Rich text of the About box.
QString about();

/// Message about missing tools, \a programs by their file names: what does not work and how to install them.
QString missingTools(const QStringList &programs);

} // namespace windowtexts

// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// The argument lists with which the application has to start the tool. "argumentlists.txt" holds them,
/// reviewed once and whenever one changes: each list, and below it for which choices and sources.
namespace argumentlists
{

/// What \a options choose, as the file says it: "4+2m" is video type 4, audio type 2, timecode channel muted.
QString choiceOf(const ExportOptions &options);

/// \a arguments of the export of \a file to \a exportDir as one line, with names for the paths.
QString lineOf(QStringList arguments, const FileData &file, const QString &exportDir);

/// The lines for the source \a name, by choice; none when the file does not have it.
QMap<QString, QString> wantedLines(const QString &name);

} // namespace argumentlists

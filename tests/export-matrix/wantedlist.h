// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QStringList>

namespace exportmatrix
{

/// The argument list with which the application must start the tool to export \a file with \a options, put
/// together word by word: a second opinion on the application's own builder, which shares no code with it.
QStringList wantedList(const FileData &file, const ExportOptions &options);

} // namespace exportmatrix

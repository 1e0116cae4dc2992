// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "batch/exportstate.h"
#include "batch/laterfinding.h"
#include "filelist/importedfiles.h"

#include <QJsonObject>
#include <QStringList>

/// All that a report says of one file, as a JSON object. Each record has all keys; what is not known is null.
namespace reportrecord
{

/// The keys of a record, in the order of the columns of a table.
const QStringList &keys();

/// The record of \a file, of \a size [bytes]; a negative size is not known. \a later: what came of searching
/// the rest of it.
QJsonObject make(const FileData &file, const RowStatus &status, qint64 size, const ExportState &exported = {},
                 const LaterFinding &later = {});

/// Whether \a record reports something that went wrong.
bool isWrong(const QJsonObject &record);

} // namespace reportrecord

// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "batch/laterfinding.h"
#include "filelist/importedfiles.h"

#include <QString>

/// What has come of reading one file.
enum class Outcome {
    Found,  ///< it carries a timecode
    Linked, ///< it was recorded together with a file that does
    None,   ///< it was read and carries none
    Failed  ///< it was not read to the end: nothing is known
};

Outcome outcomeOf(const FileData &file, const RowStatus &status);

/// One word for people and reports: "found", "linked", "none" or "failed".
QString wordFor(Outcome outcome);

/// Why no timecode is known of \a file, for people; empty when one is. \a later: what came of searching the
/// rest of it.
QString reasonFor(const FileData &file, const RowStatus &status, const LaterFinding &later = {});

// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/exportplan.h"
#include "tooladapter/rules/hints.h"
#include "tooladapter/rules/source.h"

namespace tooladapter
{

/// Whether an export from \a input to \a output (paths) needs the texts of notes that \a source only names:
/// MXF files hold notes under other names, so the tool cannot copy them.
bool lacksNotes(const Source &source, const std::string &input, const std::string &output);

/// The options that carry the notes of \a source over: all but those that hold a timecode which the file is
/// not to have, and those that describe the source's container. For sound files they are the list's own.
Options tagOptions(const ExportPlan &plan, const Source &source, int picture, const Hints &hints);

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/sourcefile.h"

namespace exportmatrix
{

/// The files of a large day: as cameras, telephones and sound recorders make them, with all that they note.
QVector<SourceFile> dayFiles();

} // namespace exportmatrix

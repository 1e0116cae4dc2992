// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/sourcefile.h"

namespace exportmatrix
{

/// What cameras and sound recorders bring home: every container, number of channels, sample format and
/// picture rate that the application meets.
QVector<SourceFile> allSources();

} // namespace exportmatrix

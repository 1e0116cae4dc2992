// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/expectation.h"

#include <QStringList>

namespace exportmatrix
{

/// Reads the written file at \a path with the system's ffprobe, ffmpeg and mediainfo and tells in what it
/// differs from \a expected; nothing = it is right. \a source is what it was written from.
QStringList faultsOf(const QString &path, const Expectation &expected, const MadeFile &source);

} // namespace exportmatrix

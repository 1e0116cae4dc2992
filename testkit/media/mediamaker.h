// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/media/recording.h"

#include <vector>

namespace mediakit
{

/// Samples of each channel of \a track, full scale is +-1.
std::vector<std::vector<float>> render(const Track &track, const Recording &recording);

/// Writes \a recording below \a folder, which exists. Sound files are written directly; pictures and coded
/// sound come from the system's ffmpeg. Returns an empty text, or what went wrong.
QString make(const Recording &recording, const QString &folder);

/// Makes all of \a recordings in turn and stops at the first that fails.
QString makeAll(const QVector<Recording> &recordings, const QString &folder);

} // namespace mediakit

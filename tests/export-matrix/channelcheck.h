// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/expectation.h"

#include <QStringList>

namespace exportmatrix
{

/// Decodes the audio stream number \a index of the file at \a path and reports where its channels do not hold
/// what \a track says of \a made. PCM must agree sample for sample; what was coded or resampled is known by
/// its tone.
QStringList channelFaults(const QString &path, int index, const ExpectedTrack &track, const MadeFile &made);

} // namespace exportmatrix

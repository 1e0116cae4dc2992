// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/sync/clockrecovery.h"
#include "ltcreader/sync/framesync.h"

#include <vector>

namespace ltcreader
{

/// Whether timecode lies before that of \a grid whose frames begin at other places. \a clock is that by which
/// \a grid was cut out of \a sound.
bool isPrecededByAnother(const FrameGrid &grid, const FilteredSound &sound, const Clock &clock);

/// Whether the timecode of \a grid shows only behind the beginning of \a samples, where louder sound may hide
/// another. \a frameLength [samples].
bool isMaskedBefore(const FrameGrid &grid, const std::vector<float> &samples, double frameLength);

/// RMS of \a samples between samples \a from and \a to.
double levelBetween(const std::vector<float> &samples, double from, double to);

} // namespace ltcreader

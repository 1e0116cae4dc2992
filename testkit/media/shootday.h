// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/media/recording.h"

namespace mediakit
{

/// A small day's work: camera files at all rates and in all usual containers, sound files with and without
/// timecode of their own, one file without timecode, one broken file. No two start at the same timecode.
QVector<Recording> shootDay();

} // namespace mediakit

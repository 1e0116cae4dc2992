// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/media/recording.h"

namespace mediakit
{

/// What the column "Audio TC" has to show for \a recording when all of it has been read.
QString expectedAudioTC(const Recording &recording);

} // namespace mediakit

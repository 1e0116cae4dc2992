// SPDX-License-Identifier: MIT
#pragma once

#include "bench/realtools/usagemeter.h"

#include <QString>

namespace bench
{

/// Reads \a folder with ostrel-batch, the program without a window. Its own CPU time and that of its tools;
/// processes and memory are not counted. Throws Failure.
Usage batchRead(const QString &folder);

} // namespace bench

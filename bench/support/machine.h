// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace bench
{

/// Processor, number of cores, memory and system of this machine, in one line.
QString describeMachine();

} // namespace bench

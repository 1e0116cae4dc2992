// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Progress of an export, measured by the growth of its output file.
namespace exportprogress
{

/// Progress steps done once the output has \a outputSize bytes, of which one step is worth
/// \a bytesPerStep: at least \a stepsDone, and below \a steps, because the last one is kept for the end of
/// the run.
uint stepsReached(qint64 outputSize, qint64 bytesPerStep, uint stepsDone, uint steps);

/// True while measuring the output can still bring a step.
bool isMeasured(uint stepsDone, uint steps);

} // namespace exportprogress

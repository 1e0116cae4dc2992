// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/verification/alternativelines.h"

namespace ltcreader
{

/// [log-likelihood ratio] With it another label in the whole recording contradicts a line.
constexpr double contradiction = 3.0;

/// Tests a line against \a alternatives: over the whole recording, and summed frame by frame from both ends
/// (A. Wald's sequential probability ratio test). \a residual: of the half bits. \a leastEnd: last frame
/// of the shortest line at the beginning that is looked for; \a latestProof: frame from which on another one
/// must be disproven. \a otherBeginning and \a motion: the log-likelihood ratios that something else at the
/// beginning and labels which do not count up may have.
Doubt testSequentially(const AlternativeLines &alternatives, const ResidualVariance &residual, int leastEnd,
                       int latestProof, double otherBeginning, double motion);

} // namespace ltcreader

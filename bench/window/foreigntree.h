// SPDX-License-Identifier: MIT
#pragma once

namespace bench
{

struct ForeignTreeRun {
    int files = 0;
    double answerTime = 0.0;   ///< [ms] from the drop to the painted table with the busy pointer
    double longestBlock = 0.0; ///< [ms] for which the event loop answered nothing while the tree is walked
    double quitTime = 0.0; ///< [s] from the wish to quit, while the tree is walked, to the end of the window
};

/// Drops a folder tree with \a files files that are no media on a window, and quits while it is walked.
ForeignTreeRun runForeignTree(int files);

} // namespace bench

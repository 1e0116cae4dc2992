// SPDX-License-Identifier: MIT
#pragma once

// Codes of the controller's result signals, in addition to the tools' own exit codes.

constexpr int probeFailed = 1000;         ///< the probe tool has failed
constexpr int probeToldNothing = 1001;    ///< the probe tool has succeeded and described nothing
constexpr int extractionFailed = 2001;    ///< no audio came out of the file
constexpr int readerNotInitialised = 204; ///< the reader's own code; also for a reader that was not started
constexpr int toolNotStarted = -1;        ///< in place of the exit code of a tool that could not be started

/// Results of an export batch.
enum ExportResult { ExportSucceeded = 0, ExportCancelled = 1, ExportHasErrors = 2 };

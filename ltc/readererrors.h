// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Text that the file table shows for a timecode read that ended with \a exitCode: one of the reader's own
/// exit codes or the codes of the steps before it. Empty for 0 and for unknown codes.
QString readerErrorText(int exitCode);

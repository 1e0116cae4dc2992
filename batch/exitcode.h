// SPDX-License-Identifier: MIT
#pragma once

/// How a run has ended, for the shell.
enum class ExitCode {
    Done = 0,        ///< all that carries timecode is done
    SomeFailed = 1,  ///< some files have failed, were not reached, or a report could not be written
    WrongUsage = 2,  ///< the arguments make no sense; nothing was begun
    ToolMissing = 3, ///< a tool is not installed; nothing was begun
};

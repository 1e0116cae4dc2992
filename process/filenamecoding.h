// SPDX-License-Identifier: MIT
#pragma once

/// Makes file names and arguments of child processes UTF-8 where the system's locale says otherwise (a
/// bare shell, an old Latin-1 locale), so that no name with an accent is lost. Does nothing on Windows.
/// Called once, before any file is touched.
void useUtf8FileNames();

// SPDX-License-Identifier: MIT
#pragma once

/// Chooses how Qt draws the program's windows. To be called before the application object is made.
void setApplicationAttributes();

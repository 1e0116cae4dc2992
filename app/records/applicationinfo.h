// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Title of the main window and of the program's message boxes.
extern const QString applicationTitle;

/// The program's own version; an offered version is compared with it.
constexpr uint applicationMajorVersion = 1;
constexpr uint applicationMinorVersion = 0;

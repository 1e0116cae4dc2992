// SPDX-License-Identifier: MIT
#include "app/records/applicationinfo.h"

// Built before main runs and never written afterwards. clazy:exclude=non-pod-global-static
const QString applicationTitle = QStringLiteral("Ostrel Timecode Tool");

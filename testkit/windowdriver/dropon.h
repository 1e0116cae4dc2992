// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

class QAbstractScrollArea;

/// Drags the files and folders \a paths over \a target and drops them there, as the desktop does.
void dropOn(QAbstractScrollArea &target, const QStringList &paths);

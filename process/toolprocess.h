// SPDX-License-Identifier: MIT
#pragma once

#include "process/qtversion.h"

#include <QTimer>

/// A child process that steps back behind the user's other work and never outlives this program.
///
/// On Linux the child runs at lower priority, is the first to go when memory runs out, and is killed when the
/// thread that started it ends; and one that is killed before it has taken its first step is seen to end,
/// too. Elsewhere a plain QProcess.
class ToolProcess : public qtversion::Process
{
    Q_OBJECT

public:
    explicit ToolProcess(QObject *parent);
    ~ToolProcess() override; ///< kills a child that still runs, without a signal

private:
    QTimer watch; ///< runs while the child does
};

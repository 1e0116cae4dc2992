// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QTimer>

/// A child process that steps back behind the user's other work and never outlives this program.
///
/// On Linux the child runs at lower priority, is the first to go when memory runs out, and is killed when the
/// thread that started it ends; and one that is killed before it has taken its first step is seen to end,
/// too. Elsewhere a plain QProcess. Derived because Qt 5 lets no other code act in the child between its
/// birth and the start of the tool.
class ToolProcess : public QProcess
{
    Q_OBJECT

public:
    explicit ToolProcess(QObject *parent);
    ~ToolProcess() override; ///< kills a child that still runs, without a signal

protected:
    void setupChildProcess() override;

private:
    qint64 owner; ///< process id of this program, passed to the child
    QTimer watch; ///< runs while the child does
};

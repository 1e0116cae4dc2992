// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QSocketNotifier;

/// Turns the signals by which a session or a terminal ends the program (SIGTERM, SIGINT, SIGHUP) into a
/// signal of the event loop, so that an export under way is wound up. A SIGHUP that was ignored when the
/// program started stays ignored. One per process; does nothing on Windows.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

signals:
    void terminationRequested();

private slots:
    void onWakeUp();

private:
    QSocketNotifier *notifier = nullptr; ///< watches the reading end of the socket pair; child of this object
};

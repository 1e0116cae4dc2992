// SPDX-License-Identifier: MIT
#pragma once

#include "control/droppedfiles.h"

#include <QBasicTimer>
#include <QFileInfo>
#include <QList>
#include <QObject>
#include <QUrl>

/// Walks through what was dropped, slice by slice, so that its thread serves others meanwhile, and no faster
/// than the files that it finds are asked about.
class PacedWalk : public QObject
{
    Q_OBJECT

public:
    explicit PacedWalk(QObject *parent);

    /// Adds a drop, to be walked after those already added. With none under way the walk begins, and may end,
    /// inside this call.
    void add(const QList<QUrl> &urls);

    bool atEnd() const { return files.atEnd(); }

    /// Whether a file that was found has not been asked about yet.
    bool isAwaitingRequests() const { return unaskedFiles > 0; }

    /// A file that was found is asked about.
    void takeRequest();

    /// Awaits no requests for the files found so far.
    void forgetRequests() { unaskedFiles = 0; }

    /// Gives the walk up, without a signal.
    void stop();

signals:
    void fileFound(const QFileInfo &file);
    void ended();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void walkOn();

    DroppedFiles files;
    QBasicTimer pause;     ///< active while the walk waits for requests
    uint unaskedFiles = 0; ///< files found that were not asked about yet
};

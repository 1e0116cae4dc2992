// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "bench/window/shoot.h"

#include <QObject>
#include <QSemaphore>
#include <QThread>

#include <functional>

namespace bench
{

/// Sends results to the window as the controller does, from a thread of its own, as fast as they are taken.
///
/// At most 45 results are under way, as many as child processes can end at one time.
class ResultFeeder : public QObject
{
    Q_OBJECT

public:
    explicit ResultFeeder(const Shoot &shoot);
    ~ResultFeeder() override;

    /// To be called in the window's thread; they return when the window has taken the results of all \a rows.
    void feedProbeResults(int rows);
    void feedReaderResults(int rows);

signals:
    void ffprobeResult(FileData fileData, int fileNumber, int exitCode);
    void audioTCReadResult(QJsonObject ltcResultJson, int fileIndex, int audioTCStreamIndex, int exitCode);
    void importProgress(int current, int total, QString statusMsg);
    void importReady();
    void readingFinished();
    void fed();

private:
    void feed(int rows, const QString &status, const std::function<void(int row)> &send);

    Shoot shoot;
    QThread thread;
    QObject receiver; ///< in the window's thread
    QSemaphore room;  ///< for results that the window has not taken yet
};

} // namespace bench

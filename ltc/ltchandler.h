// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QString>

/// Runs the timecode reader once over one audio file and reports what it printed.
///
/// Lives in the controller's thread, as a child of the controller, which deletes it with deleteLater() once
/// it has the result. Of couldNotStart() and ltcReaderResult() exactly one comes, unless the handler is
/// deleted first, which kills a reader that still runs.
class LTCHandler : public QObject
{
    Q_OBJECT

public:
    explicit LTCHandler(QObject *parent);

    /// Starts reading \a audioPath with automatic settings. One read per handler.
    void readTimecode(const QString &audioPath, bool fromGoPro);

    /// Starts reading \a audioPath with the user's \a readOptions. One read per handler.
    void readTimecode(const QString &audioPath, const AudioTCOptions &readOptions, bool fromGoPro);

signals:
    /// The reader has ended. \a ltcReadResultJson is empty when it did not print one whole JSON object.
    void ltcReaderResult(LTCHandler *handler, QJsonObject ltcReadResultJson, QString filePath, int exitCode);

    /// The reader is missing or cannot be started; no result will come. Never sent from inside
    /// readTimecode().
    void couldNotStart(LTCHandler *handler);

private slots:
    void ltcReaderReady();
    void ltcReaderFinished(int exitCode);

private:
    void start();
    void reportFailedStart(QProcess::ProcessError error);

    QProcess *process = nullptr;       ///< child of this handler; null until a read starts
    QByteArray outputBuffer;           ///< what the reader has printed so far
    QString filePath;                  ///< the audio file being read
    bool isGoPro = false;              ///< the recording came from a GoPro camera
    AudioTCOptions options;            ///< the user's choice; valid only with hasOptions
    bool hasOptions = false;           ///< the read follows the user's choice
    QString program = "LTCReader.exe"; ///< name of the reader; where it is, is looked up at its start
};

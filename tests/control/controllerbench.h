// SPDX-License-Identifier: MIT
#pragma once

#include "control/maincontrol.h"
#include "tests/support/longwait.h"

#include <QJsonObject>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/// A controller under test with fake tools, a media folder and a temporary folder of its own.
///
/// Writes down every signal of the controller as one line of text, in order.
class ControllerBench : public QObject
{
    Q_OBJECT

public:
    ControllerBench();
    ~ControllerBench() override;

    /// Makes the controller as a start of the program would; the one before is destroyed first.
    void restart();

    MainControl &control() { return *controller; }

    /// From now on answers the controller as the file table does: a row and a probe for every file found, and
    /// a reading for every file probed well.
    void actAsFileTable();

    QString mediaPath(const QString &name) const { return media.filePath(name); }
    QUrl mediaUrl(const QString &name = {}) const { return QUrl::fromLocalFile(media.filePath(name)); }

    /// Makes the media file \a name, for which the fake tools play \a plan. Returns its record, of row \a
    /// row.
    FileData makeFile(const QString &name, const QJsonObject &plan = {}, int row = -1) const;

    /// \a count files "clip0.mov" ... of the rows 0 ..., with one plan for all.
    QVector<FileData> makeFiles(int count, const QJsonObject &plan = {}) const;

    /// Opens the gate at which fake tools wait ("waitFor": \a name).
    void openGate(const QString &name = "gate") const;

    /// Child processes that the controller has started and not yet finished with, by the handlers it keeps.
    int handlers() const;

    /// Tools started so far, of all files, in order: "<job> <file name>".
    QStringList startedTools() const;

    /// The most tools that ran at one time so far.
    int mostToolsAtOnce() const;

    QString temporaryPath() const { return system.filePath("OstrelSyncTemp"); }
    bool hasTemporaryFolder() const { return QFileInfo::exists(temporaryPath()); }

    QStringList events; ///< every signal so far
    QStringList eventsOf(const QString &beginning) const;
    int count(const QString &event) const { return static_cast<int>(events.count(event)); }

    QVector<FileData> probedFiles; ///< records of the ffprobeResult signals, in order

private:
    void writeDown();

    QByteArray realTemporaryPath; ///< of the system, given back at the end
    QTemporaryDir media;
    QTemporaryDir system; ///< the system's temporary folder of this test
    std::unique_ptr<MainControl> controller;
    QStringList tableRows; ///< paths by row, when acting as the file table
};

/// Options of a re-read: automatic, all rows.
AudioTCOptions automaticReading();

// SPDX-License-Identifier: MIT
#pragma once

#include "app/mainwindow.h"
#include "tests/window/dialogbench.h"
#include "tests/window/messageboxanswers.h"

#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include <memory>

/// The real main window over fake tools, in a folder of its own.
class WindowBench
{
public:
    WindowBench();

    /// Writes an empty media file; returns its path.
    QString addFile(const QString &name);
    /// Drops the folder of the media files on the table, as the desktop would.
    void dropFolder();
    void drop(const QStringList &paths);
    /// Drops the folder and waits for the end of the import.
    bool import();
    /// Fills in the export dialog for all files and presses "Export".
    void startExport();
    /// Informs the window that a batch of exports has begun, as the controller does.
    void beginExport() const;
    /// Informs the window that the batch has ended with \a result, and which files \a failed.
    void endExport(int result, const QStringList &failed = {}) const;
    /// Imports one file and exports it with a tool that hangs; false when the export does not come that far.
    bool startHangingExport();
    /// The process of the tool that hangs, while it runs or afterwards.
    qint64 hangingTool() const;

    QString mediaFolder() const { return media; }
    QString exportFolder() const { return target; }
    QStringList exportedFiles() const;
    QString status() const { return statusLabel->text(); }
    QStringList streamLines() const;
    QStringList column(int number) const;

    template <typename Child>
    Child *child(const char *name) const
    {
        return childOf<Child>(*window, name);
    }

    QTemporaryDir folder;
    QString media;
    QString target;
    MessageBoxAnswers boxes;
    std::unique_ptr<MainWindow> window;
    QTableWidget *fileList;
    QListWidget *streamInfoList;
    QLabel *statusLabel;
    QProgressBar *progressBar;
    QPushButton *cancelButton;
};

/// The top-level window of the program with the given object name; fails hard when there is none.
QWidget *topLevel(const char *objectName);

// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "app/windowparts.h"

#include <QMainWindow>
#include <QStringList>
#include <QUrl>
#include <QVector>

/// The main window: builds the long-lived objects of the program, connects them all, and shows what goes on
/// in one status label, one progress bar and a few message boxes.
///
/// The controller lives in a thread of its own and is reached through queued signals only. It ends with the
/// process; everything else is deleted by the destructor.
class MainWindow : public QMainWindow, private WindowParts
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Shows, without waiting, a message that names the tools that are missing on this machine, if any.
    void reportMissingTools();

    /// Ends the program as after a confirmed quit, without a question: the session ends. An export is
    /// cancelled first.
    void quitWithoutAsking();

    /// The same for a session that waits for its programs: returns when the export has been wound up, or
    /// after 5 s.
    void onSessionEnd();

signals:
    void deleteSelectedRowsSignal();
    void cancelExport();

private slots:
    void onExportButtonClicked();
    void onExportAllButtonClicked();
    void onCancelExportButtonClicked();
    void onExportStart();
    void onAboutMenuClicked();
    void onReadAudioTCButtonClicked();
    void exportReady(int exportResult, QStringList exportErrorFileNameList);
    void importReady();
    void readingFinished();
    void statusProgressUpdate(int current, int all, QString statusMsg);
    void exitApplication();
    void updateFileInfo(FileData fileData);
    void versionInfoCheck(uint majorVersion, uint minorVersion, QString description, QUrl downloadLink);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void connectAll();
    void connectWorker();

    void showExportWindow(bool all);
    void bringUp(QWidget *dialog);
    void onExportRequest(const QVector<FileData> &files);
    void setExportRunning(bool running);
    void offerExports(bool offered);
    bool mayQuitNow();
    void startCancelling();
    void showExportResult(const QString &text);

    bool exportRunning = false; ///< from onExportStart() to the end of exportReady()
    bool resultShown = false;   ///< the batch is over and a message box shows its result
    bool quitPending = false;   ///< quit confirmed during an export; the window closes when it has ended
    bool cancelling = false;    ///< cancel confirmed; until exportReady()
    bool sessionEnding = false; ///< no user is left to answer a message box
};

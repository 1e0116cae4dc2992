// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QStringList>
#include <QThread>
#include <QUrl>
#include <QVector>

class AudioTCWindow;
class ExportWindow;
class FileList;
class MainControl;
class QHBoxLayout;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QVBoxLayout;
class UpdateCheck;

/// The main window: builds the long-lived objects of the program, connects them all, and shows what goes on
/// in one status label, one progress bar and a few message boxes.
///
/// The controller lives in a thread of its own and is reached through queued signals only. It ends with the
/// process; everything else is deleted by the destructor.
class MainWindow : public QMainWindow
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
    void nameWidgets();
    void setUpMenus();
    void setUpWidgets();
    void layOut();
    void connectAll();
    void connectWorker();

    void showExportWindow(bool all);
    void bringUp(QWidget *dialog);
    void onExportRequest(const QVector<FileData> &files);
    void setExportRunning(bool running);
    void offerExports(bool offered);
    bool confirmed(const QString &title, const QString &question);
    bool mayQuitNow();
    void startCancelling();
    void showExportResult(const QString &text);

    QThread workerThread; ///< the thread in which mainControl lives
    QWidget *centralWidget;
    ExportWindow *exportWindow;
    AudioTCWindow *audioTCWindow;
    UpdateCheck *updateCheck;
    QAction *exportAction;
    QAction *exportAllAction;
    QAction *exitAction;
    QMenu *fileMenu;
    QMenu *editMenu;
    QAction *readAudioTCAction;
    QMenu *aboutMenu;
    QAction *aboutAction;
    MainControl *mainControl; ///< moved into workerThread; ends with the process
    FileList *fileList;
    QListWidget *streamInfoList;
    QLabel *logoLabel;
    QLabel *statusLabel;
    QProgressBar *progressBar;
    QPushButton *cancelButton;
    QHBoxLayout *statusLayout;
    QVBoxLayout *leftLayout;
    QVBoxLayout *rightLayout;
    QHBoxLayout *topLayout;
    bool exportRunning = false; ///< from onExportStart() to the end of exportReady()
    bool resultShown = false;   ///< the batch is over and a message box shows its result
    bool quitPending = false;   ///< quit confirmed during an export; the window closes when it has ended
    bool cancelling = false;    ///< cancel confirmed; until exportReady()
    bool sessionEnding = false; ///< no user is left to answer a message box
};

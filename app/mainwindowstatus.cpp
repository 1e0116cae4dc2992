// SPDX-License-Identifier: MIT
// What the main window shows: status line, progress, streams and message boxes; and how it ends.
#include "app/mainwindow.h"
#include "app/messages.h"
#include "app/records/resultcodes.h"
#include "app/windowtexts.h"
#include "control/maincontrol.h"
#include "filelist/filelist.h"
#include "process/missingtools.h"
#include "update/versiondescriptor.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

void MainWindow::statusProgressUpdate(int current, int all, QString statusMsg)
{
    progressBar->setRange(0, qMax(all, 1)); // a range of nothing would show an endless animation
    progressBar->setValue(current);
    statusLabel->setText(cancelling ? tr("Status: cancelling export...") : tr("Status: ") + statusMsg);
}

void MainWindow::importReady()
{
    progressBar->setValue(0);
    statusLabel->setText(tr("Status: import ready"));
}

void MainWindow::readingFinished()
{
    progressBar->setValue(0);
    statusLabel->setText(tr("Status: read finished"));
    fileList->readingFinished();
}

/// The worker may be a while in taking the request; another export must not be asked for meanwhile.
void MainWindow::onExportRequest(const QVector<FileData> &files)
{
    if (!files.isEmpty()) // an export of nothing never starts
        offerExports(false);
}

void MainWindow::onExportStart()
{
    setExportRunning(true);
    cancelButton->show();
}

void MainWindow::setExportRunning(bool running)
{
    exportRunning = running;
    offerExports(!running);
}

/// A second export would overwrite the count of the first.
void MainWindow::offerExports(bool offered)
{
    exportAction->setEnabled(offered);
    exportAllAction->setEnabled(offered);
}

void MainWindow::startCancelling()
{
    emit cancelExport();
    cancelButton->hide();
}

void MainWindow::onCancelExportButtonClicked()
{
    const bool wasRunning = exportRunning;
    if (!messages::isConfirmed(this, tr("Cancel Export"), tr("Are you sure you want to cancel?")))
        return;
    if (wasRunning && !exportRunning)
        return; // it has ended while the question stood
    cancelling = true;
    statusLabel->setText(tr("Status: cancelling export..."));
    startCancelling();
}

void MainWindow::exportReady(int exportResult, QStringList exportErrorFileNameList)
{
    cancelling = false;
    if (exportResult == ExportSucceeded) {
        showExportResult(tr("Ostrel did the job!"));
        statusLabel->setText(tr("Status:"));
    } else if (exportResult == ExportCancelled) {
        statusLabel->setText(tr("Status: export cancelled"));
    } else if (exportResult == ExportHasErrors) {
        showExportResult(windowtexts::failedExports(exportErrorFileNameList));
        statusLabel->setText(tr("Status:"));
    }
    progressBar->setValue(0);
    cancelButton->hide();
    setExportRunning(false);
    if (quitPending)
        exitApplication();
}

void MainWindow::showExportResult(const QString &text)
{
    if (sessionEnding)
        return;
    resultShown = true;
    messages::showExportResult(this, text);
    resultShown = false;
}

void MainWindow::updateFileInfo(FileData fileData)
{
    streamInfoList->clear();
    streamInfoList->addItems(windowtexts::streamLines(fileData));
}

void MainWindow::onAboutMenuClicked()
{
    messages::showAbout(this);
}

void MainWindow::versionInfoCheck(uint majorVersion, uint minorVersion, QString description,
                                  QUrl downloadLink)
{
    if (isNewerVersion(majorVersion, minorVersion))
        messages::showNewVersion(this, downloadLink, description);
}

void MainWindow::reportMissingTools()
{
    const QStringList missing = missingTools();
    if (!missing.isEmpty())
        messages::showMissingTools(this, missing);
}

bool MainWindow::mayQuitNow()
{
    if (!exportRunning)
        return true;
    if (sessionEnding)
        return false; // the windows close when the export has been wound up
    if (!messages::isConfirmed(this, tr("Quit Application"),
                               tr("Are you sure you want to quit\n(and cancel the export process)?")))
        return false;
    if (!exportRunning)
        return true; // it has ended while the question stood
    quitPending = true;
    startCancelling();
    return false;
}

void MainWindow::exitApplication()
{
    if (mayQuitNow())
        QApplication::closeAllWindows();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (mayQuitNow()) {
        QApplication::closeAllWindows();
        event->accept();
    } else {
        event->ignore();
    }
}

void MainWindow::quitWithoutAsking()
{
    sessionEnding = true;
    if (!exportRunning) {
        QApplication::closeAllWindows();
        return;
    }
    quitPending = true;
    if (!resultShown)
        startCancelling();
    // No user is left to answer a question or to read a message.
    while (QWidget *box = QApplication::activeModalWidget()) {
        if (!box->close())
            break;
    }
}

void MainWindow::onSessionEnd()
{
    constexpr int longestWait = 5000; // [ms] what a session usually grants
    quitWithoutAsking();
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    deadline.start(longestWait);
    connect(mainControl, &MainControl::exportReady, &loop, &QEventLoop::quit);
    if (exportRunning && !resultShown)
        loop.exec();
}

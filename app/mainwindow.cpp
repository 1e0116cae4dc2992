// SPDX-License-Identifier: MIT
#include "app/mainwindow.h"

#include "control/maincontrol.h"
#include "ffmpeg/exportwindow.h"
#include "filelist/filelist.h"
#include "ltc/audiotcwindow.h"
#include "update/updatecheck.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QCursor>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), WindowParts(this)
{
    connectAll();
    connectWorker();
    workerThread.start();
    updateCheck->requestVersionInfo();
}

MainWindow::~MainWindow()
{
    delete updateCheck;
    delete exportWindow;
    delete audioTCWindow;
    constexpr unsigned long longestWait = 5000; // [ms]
    workerThread.quit();
    if (!workerThread.wait(longestWait)) {
        workerThread.terminate();
        workerThread.wait();
    }
    delete fileList;
}

// The order is part of the program's behaviour: receivers of one signal run in it.
// clang-format off
void MainWindow::connectAll()
{
    connect(updateCheck, &UpdateCheck::currentVersionInfo, this, &MainWindow::versionInfoCheck);
    connect(exportWindow, &ExportWindow::exportRequest, fileList, &FileList::exportFiles);
    connect(audioTCWindow, &AudioTCWindow::readAudioTCReq, fileList, &FileList::onAudioTCReadReq);
    connect(exportAction, &QAction::triggered, this, &MainWindow::onExportButtonClicked);
    connect(exportAllAction, &QAction::triggered, this, &MainWindow::onExportAllButtonClicked);
    connect(exitAction, &QAction::triggered, this, &MainWindow::exitApplication);
    connect(aboutAction, &QAction::triggered, this, &MainWindow::onAboutMenuClicked);
    connect(readAudioTCAction, &QAction::triggered, this, &MainWindow::onReadAudioTCButtonClicked);
    connect(cancelButton, &QPushButton::clicked, this, &MainWindow::onCancelExportButtonClicked);
    connect(this, &MainWindow::cancelExport, mainControl, &MainControl::onExportCancel);
    connect(fileList, &FileList::updateFileInfo, this, &MainWindow::updateFileInfo);
    connect(fileList, &FileList::ffprobeFileReq, mainControl, &MainControl::onFFProbeFile);
    connect(fileList, &FileList::iterateThroughDirReq, mainControl, &MainControl::onIterateThroughDir);
    connect(fileList, &FileList::initAudioTCInfoReq, mainControl, &MainControl::onInitAudioTCInfo);
    connect(fileList, &FileList::updateAudioTCInfoReq, mainControl, &MainControl::onUpdateAudioTCInfo);
    connect(fileList, &FileList::exportFilesReq, mainControl, &MainControl::onExportReq);
    connect(mainControl, &MainControl::ffprobeResult, fileList, &FileList::onFFProbeResult);
    connect(mainControl, &MainControl::gotFileFromDir, fileList, &FileList::addItemToTable);
    connect(mainControl, &MainControl::audioTCReadResult, fileList, &FileList::onAudioTCReadReturn);
    connect(mainControl, &MainControl::exportProgress, this, &MainWindow::statusProgressUpdate);
    connect(mainControl, &MainControl::exportReady, this, &MainWindow::exportReady);
    connect(mainControl, &MainControl::importProgress, this, &MainWindow::statusProgressUpdate);
    connect(mainControl, &MainControl::importReady, this, &MainWindow::importReady);
    connect(mainControl, &MainControl::importReady, fileList, &FileList::importReady);
    connect(mainControl, &MainControl::readingFinished, this, &MainWindow::readingFinished);
    connect(mainControl, &MainControl::exportStarted, this, &MainWindow::onExportStart);
    connect(this, &MainWindow::deleteSelectedRowsSignal, fileList, &FileList::deleteSelectedRows);
    connect(mainControl, &MainControl::importIdle, fileList, &FileList::importReady);
}
// clang-format on

/// What holds the program together: the end of the worker, and requests that are still on their way to it.
void MainWindow::connectWorker()
{
    connect(&workerThread, &QThread::finished, mainControl, &MainControl::shutDown);
    connect(mainControl, &MainControl::dropTaken, fileList, &FileList::dropTaken);
    connect(fileList, &FileList::exportFilesReq, this, &MainWindow::onExportRequest);
}

void MainWindow::onExportButtonClicked()
{
    showExportWindow(false);
}

void MainWindow::onExportAllButtonClicked()
{
    showExportWindow(true);
}

void MainWindow::showExportWindow(bool all)
{
    exportWindow->setExportAll(all);
    bringUp(exportWindow);
}

void MainWindow::onReadAudioTCButtonClicked()
{
    bringUp(audioTCWindow);
}

/// Shows \a dialog, or brings it to the front. It opens over this window the first time, then where it was
/// left.
void MainWindow::bringUp(QWidget *dialog)
{
    if (dialog->isVisible()) {
        dialog->activateWindow();
        return;
    }
    if (!dialog->testAttribute(Qt::WA_Moved)) {
        dialog->adjustSize();
        dialog->move(geometry().center() - dialog->rect().center());
    }
    dialog->show();
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Delete) {
        streamInfoList->clear();
        statusLabel->setText(tr("Status: "));
        // The results of what is under way would land on the rows that moved up.
        if (!fileList->pendingWork().mustKeepRows())
            emit deleteSelectedRowsSignal();
    }
    QMainWindow::keyPressEvent(event);
}

void MainWindow::contextMenuEvent(QContextMenuEvent *)
{
    QMenu menu(this);
    menu.addAction(exportAction);
    menu.addAction(readAudioTCAction);
    menu.exec(QCursor::pos());
}

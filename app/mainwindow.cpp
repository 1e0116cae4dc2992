// SPDX-License-Identifier: MIT
#include "app/mainwindow.h"

#include "app/records/applicationinfo.h"
#include "control/maincontrol.h"
#include "ffmpeg/exportwindow.h"
#include "filelist/filelist.h"
#include "ltc/audiotcwindow.h"
#include "update/updatecheck.h"
#include "widgets/widgetnames.h"

#include <QAction>
#include <QBoxLayout>
#include <QContextMenuEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>

namespace
{

const char *const logoFile = "images/ostrel_LOGO_transparent";

/// The logo beside the working directory or, where there is none, the one compiled into the program. On
/// screens of high density it is the finer drawing, at the pixels of the screen.
QPixmap logo()
{
    const double ratio = qApp->devicePixelRatio();
    for (const QString &folder : {QString(), QString(":/")}) {
        const QPixmap plain(folder + logoFile + ".png");
        if (plain.isNull())
            continue;
        if (ratio <= 1.0)
            return plain;
        const QPixmap fine(folder + logoFile + "@2x.png");
        QPixmap scaled = (fine.isNull() ? plain : fine)
                             .scaled(plain.size() * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        scaled.setDevicePixelRatio(ratio);
        return scaled;
    }
    return {};
}

/// The controller is never deleted: it ends with the process, as its thread may have had to be terminated.
MainControl *newControllerOfTheProcess()
{
    return new MainControl;
}

} // namespace

// Resources of a static library are only there once they are asked for, from outside of any namespace.
static void initializeImages()
{
    Q_INIT_RESOURCE(images);
}

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent),
      workerThread(this),
      centralWidget(new QWidget),
      exportWindow(new ExportWindow),
      audioTCWindow(new AudioTCWindow),
      updateCheck(new UpdateCheck(nullptr)),
      exportAction(new QAction(tr("&Export"), this)),
      exportAllAction(new QAction(tr("&Export All"), this)),
      exitAction(new QAction(tr("&Exit"), this)),
      fileMenu(new QMenu(tr("&File"), this)),
      editMenu(new QMenu(tr("&Edit"), this)),
      readAudioTCAction(new QAction(tr("&Read Audio TC"), this)),
      aboutMenu(new QMenu(tr("&About"), this)),
      aboutAction(new QAction(tr("&About"), this)),
      mainControl(newControllerOfTheProcess()),
      fileList(new FileList(mainControl)),
      streamInfoList(new QListWidget),
      logoLabel(new QLabel),
      statusLabel(new QLabel(tr("Status:"))),
      progressBar(new QProgressBar),
      cancelButton(new QPushButton(tr("Cancel"))),
      statusLayout(new QHBoxLayout),
      leftLayout(new QVBoxLayout),
      rightLayout(new QVBoxLayout),
      topLayout(new QHBoxLayout)
{
    initializeImages();
    nameWidgets();
    setUpMenus();
    setUpWidgets();
    layOut();
    mainControl->moveToThread(&workerThread);
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

void MainWindow::nameWidgets()
{
    named(this, "mainWindow", applicationTitle);
    named(centralWidget, "centralWidget", tr("Files and progress"));
    named(menuBar(), "menuBar", tr("Menu bar"));
    named(fileMenu, "fileMenu", tr("File"));
    named(editMenu, "editMenu", tr("Edit"));
    named(aboutMenu, "aboutMenu", tr("About"));
    named(fileList, "fileList", tr("Imported files"));
    named(streamInfoList, "streamInfoList", tr("Streams of the clicked file"));
    named(logoLabel, "logoLabel", tr("Logo"));
    named(statusLabel, "statusLabel", {}); // screen readers say its text
    named(progressBar, "progressBar", tr("Progress"));
    named(cancelButton, "cancelButton", tr("Cancel"));
    exportAction->setObjectName("exportAction");
    exportAllAction->setObjectName("exportAllAction");
    exitAction->setObjectName("exitAction");
    readAudioTCAction->setObjectName("readAudioTCAction");
    aboutAction->setObjectName("aboutAction");
    workerThread.setObjectName("workerThread");
}

void MainWindow::setUpMenus()
{
    fileMenu->addAction(exportAllAction);
    fileMenu->addAction(exportAction);
    fileMenu->addSeparator();
    fileMenu->addAction(exitAction);
    editMenu->addAction(readAudioTCAction);
    aboutMenu->addAction(aboutAction);
    for (QMenu *menu : {fileMenu, editMenu, aboutMenu})
        menuBar()->addMenu(menu);
}

void MainWindow::setUpWidgets()
{
    constexpr int fileListMinimumWidth = 700;    // [pixels]
    constexpr int rightMinimumWidth = 200;       // [pixels]
    constexpr int streamListMaximumWidth = 300;  // [pixels]
    constexpr int streamListMinimumHeight = 100; // [pixels]
    constexpr int logoMaximumWidth = 280;        // [pixels]

    fileList->setMinimumWidth(fileListMinimumWidth);
    streamInfoList->setMinimumWidth(rightMinimumWidth);
    streamInfoList->setMaximumWidth(streamListMaximumWidth);
    streamInfoList->setMinimumHeight(streamListMinimumHeight);
    streamInfoList->setSelectionMode(QAbstractItemView::NoSelection);
    logoLabel->setPixmap(logo());
    logoLabel->setAlignment(Qt::AlignCenter);
    logoLabel->setMinimumWidth(rightMinimumWidth);
    logoLabel->setMaximumWidth(logoMaximumWidth);
    const std::initializer_list<QWidget *> expanding{fileList, streamInfoList, logoLabel};
    for (QWidget *widget : expanding)
        widget->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    statusLabel->setTextFormat(Qt::PlainText);
    cancelButton->hide();
}

void MainWindow::layOut()
{
    constexpr int rightMargin = 5;          // [pixels]
    constexpr QSize initialSize(1120, 600); // [pixels] fits the smallest usual screens with room for panels

    statusLayout->addWidget(statusLabel);
    statusLayout->addWidget(progressBar);
    statusLayout->addWidget(cancelButton);
    leftLayout->addWidget(fileList);
    leftLayout->addLayout(statusLayout);
    rightLayout->setContentsMargins(rightMargin, rightMargin, rightMargin, rightMargin);
    rightLayout->setSizeConstraint(QLayout::SetMaximumSize);
    rightLayout->addWidget(logoLabel);
    rightLayout->addWidget(streamInfoList);
    topLayout->addLayout(leftLayout);
    topLayout->addLayout(rightLayout);
    centralWidget->setLayout(topLayout);
    setCentralWidget(centralWidget);
    setWindowTitle(applicationTitle);
    resize(initialSize);

    setTabOrder(fileList, cancelButton);
    setTabOrder(cancelButton, streamInfoList);
    fileList->setFocus();
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

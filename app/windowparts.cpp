// SPDX-License-Identifier: MIT
#include "app/windowparts.h"

#include "app/records/applicationinfo.h"
#include "control/maincontrol.h"
#include "ffmpeg/exportwindow.h"
#include "filelist/filelist.h"
#include "ltc/audiotcwindow.h"
#include "update/updatecheck.h"
#include "widgets/widgetnames.h"

#include <QAction>
#include <QBoxLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>

namespace
{

QString tr(const char *text)
{
    return QCoreApplication::translate("MainWindow", text);
}

const char *const logoFile = "images/ostrel_LOGO_transparent";

/// The logo next to the working directory or, if it has none, the one compiled into the program. On
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

WindowParts::WindowParts(QMainWindow *window)
    : workerThread(window),
      centralWidget(new QWidget),
      exportWindow(new ExportWindow),
      audioTCWindow(new AudioTCWindow),
      updateCheck(new UpdateCheck(nullptr)),
      exportAction(new QAction(tr("&Export"), window)),
      exportAllAction(new QAction(tr("&Export All"), window)),
      exitAction(new QAction(tr("&Exit"), window)),
      fileMenu(new QMenu(tr("&File"), window)),
      editMenu(new QMenu(tr("&Edit"), window)),
      readAudioTCAction(new QAction(tr("&Read Audio TC"), window)),
      aboutMenu(new QMenu(tr("&About"), window)),
      aboutAction(new QAction(tr("&About"), window)),
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
    nameWidgets(window);
    setUpMenus(window);
    setUpWidgets();
    layOut(window);
    mainControl->moveToThread(&workerThread);
}

void WindowParts::nameWidgets(QMainWindow *window)
{
    named(window, "mainWindow", applicationTitle);
    named(centralWidget, "centralWidget", tr("Files and progress"));
    named(window->menuBar(), "menuBar", tr("Menu bar"));
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

void WindowParts::setUpMenus(QMainWindow *window)
{
    fileMenu->addAction(exportAllAction);
    fileMenu->addAction(exportAction);
    fileMenu->addSeparator();
    fileMenu->addAction(exitAction);
    editMenu->addAction(readAudioTCAction);
    aboutMenu->addAction(aboutAction);
    for (QMenu *menu : {fileMenu, editMenu, aboutMenu})
        window->menuBar()->addMenu(menu);
}

void WindowParts::setUpWidgets()
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

void WindowParts::layOut(QMainWindow *window)
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
    window->setCentralWidget(centralWidget);
    window->setWindowTitle(applicationTitle);
    window->resize(initialSize);

    QWidget::setTabOrder(fileList, cancelButton);
    QWidget::setTabOrder(cancelButton, streamInfoList);
    fileList->setFocus();
}

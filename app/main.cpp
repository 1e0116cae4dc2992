// SPDX-License-Identifier: MIT
#include "app/applicationattributes.h"
#include "app/mainwindow.h"
#include "app/records/recordtypes.h"
#include "process/filenamecoding.h"
#include "process/qtversion.h"
#include "process/terminationsignals.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    registerRecordTypes();
    useUtf8FileNames();
    setApplicationAttributes();
    const QApplication application(argc, argv);
    // 5 = selectable by mouse (1) and links clickable by mouse (4)
    qApp->setStyleSheet("QMessageBox { messagebox-text-interaction-flags: 5; }");
    // The window answers the end of the session itself; closing all windows first would ask questions.
    qtversion::leaveWindowsToProgram<QGuiApplication>();

    MainWindow window;
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &window,
                     &MainWindow::quitWithoutAsking);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window, &MainWindow::onSessionEnd,
                     Qt::DirectConnection);
    window.show();
    window.reportMissingTools();
    return QApplication::exec();
}

// SPDX-License-Identifier: MIT
#include "bench/realtools/workingwindow.h"

#include "bench/support/benchmarkprogram.h"
#include "bench/support/droppeddata.h"
#include "filelist/filelist.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QMessageBox>
#include <QTimer>

namespace bench
{

namespace
{

constexpr int patience = 600'000; // [ms]

void giveTime(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

WorkingWindow::WorkingWindow()
{
    window.show();
    giveTime(300);
}

void WorkingWindow::import(const QString &folder)
{
    const auto *status = window.findChild<QLabel *>("statusLabel");
    auto *fileList = window.findChild<FileList *>("fileList");
    watch.restart();
    drop({folder}, *fileList);
    QElapsedTimer timer;
    timer.start();
    while (fileList->pendingWork().isBusy()) {
        if (timer.hasExpired(patience))
            throw Failure("the import does not end: " + status->text());
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    longest = watch.longestBlock();
    if (status->text() != "Status: import ready")
        throw Failure("the import ends with: " + status->text());
}

void WorkingWindow::exportAll(const ExportOptions &options)
{
    QString result;
    QTimer timer; // runs inside of the message box, too
    QObject::connect(&timer, &QTimer::timeout, &window, [&result] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            result = box->text();
            box->accept();
        }
    });
    timer.start(20);
    watch.restart();
    window.findChild<FileList *>("fileList")->exportFiles(options);
    QElapsedTimer elapsed;
    elapsed.start();
    while (result.isEmpty()) {
        if (elapsed.hasExpired(patience))
            throw Failure("the export does not end");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    longest = watch.longestBlock();
    if (result != "Ostrel did the job!")
        throw Failure(result.section('\n', 0, 1).replace('\n', ' '));
}

} // namespace bench

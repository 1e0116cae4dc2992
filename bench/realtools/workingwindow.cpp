// SPDX-License-Identifier: MIT
#include "bench/realtools/workingwindow.h"

#include "bench/support/program.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>

namespace bench
{

void WorkingWindow::import(const QString &folder)
{
    watch.restart();
    drop(folder);
    waitUntil([this] { return !table().pendingWork().isBusy(); }, "the import");
    longest = watch.longestBlock();
    const QString status = window.findChild<QLabel *>("statusLabel")->text();
    if (status != "Status: import ready")
        throw Failure("the import ends with: " + status);
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
    table().exportFiles(options);
    waitUntil([&result] { return !result.isEmpty(); }, "the export");
    longest = watch.longestBlock();
    if (result != "Ostrel did the job!")
        throw Failure(result.section('\n', 0, 1).replace('\n', ' '));
}

} // namespace bench

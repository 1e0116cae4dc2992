// SPDX-License-Identifier: MIT
#include "tests/window/windowbench.h"

#include "testkit/faketools/faketools.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>
#include <QUrl>

namespace
{

const char *const hangingFile = "hanging.mov";

} // namespace

WindowBench::WindowBench()
    : media(folder.filePath("media")),
      target(folder.filePath("target")),
      window(std::make_unique<MainWindow>()),
      fileList(child<QTableWidget>("fileList")),
      streamInfoList(child<QListWidget>("streamInfoList")),
      statusLabel(child<QLabel>("statusLabel")),
      progressBar(child<QProgressBar>("progressBar")),
      cancelButton(child<QPushButton>("cancelButton"))
{
    if (!QDir().mkpath(media) || !QDir().mkpath(target))
        qFatal("cannot make folders");
    window->show();
    if (!QTest::qWaitForWindowActive(window.get(), longWait))
        qFatal("the window does not become active");
}

QString WindowBench::addFile(const QString &name)
{
    QFile file(QDir(media).filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(name));
    return file.fileName();
}

void WindowBench::drop(const QStringList &paths)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls += QUrl::fromLocalFile(path);
    data.setUrls(urls);
    const QPoint place = fileList->viewport()->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(fileList->viewport(), &enter);
    QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(fileList->viewport(), &event);
}

void WindowBench::dropFolder()
{
    drop({media});
}

bool WindowBench::import()
{
    dropFolder();
    // An earlier import may have left the text there.
    return QTest::qWaitFor([this] { return fileList->cursor().shape() == Qt::ArrowCursor; }, longWait) &&
           status() == "Status: import ready";
}

void WindowBench::startExport()
{
    child<QAction>("exportAllAction")->trigger();
    QWidget *dialog = topLevel("exportWindow");
    dialog->findChild<QLineEdit *>("exportDirEdit")->setText(target);
    QTest::mouseClick(dialog->findChild<QPushButton *>("exportButton"), Qt::LeftButton);
}

void WindowBench::beginExport() const
{
    QMetaObject::invokeMethod(window.get(), "onExportStart");
}

void WindowBench::endExport(int result, const QStringList &failed) const
{
    QMetaObject::invokeMethod(window.get(), "exportReady", Q_ARG(int, result), Q_ARG(QStringList, failed));
}

bool WindowBench::startHangingExport()
{
    faketools::setPlan(addFile(hangingFile), {{"export", QJsonObject{{"hang", true}}}});
    if (!import())
        return false;
    startExport();
    return QTest::qWaitFor([this] { return hangingTool() > 0 && cancelButton->isVisible(); }, longWait);
}

qint64 WindowBench::hangingTool() const
{
    const auto exports = faketools::calls(QDir(media).filePath(hangingFile), "export");
    return exports.isEmpty() ? 0 : exports.first().processId;
}

QStringList WindowBench::exportedFiles() const
{
    return QDir(target).entryList(QDir::Files, QDir::Name);
}

QStringList WindowBench::streamLines() const
{
    QStringList lines;
    for (int i = 0; i < streamInfoList->count(); ++i)
        lines += streamInfoList->item(i)->text();
    return lines;
}

QStringList WindowBench::column(int number) const
{
    QStringList texts;
    for (int row = 0; row < fileList->rowCount(); ++row)
        texts += fileList->item(row, number)->text();
    return texts;
}

QWidget *topLevel(const char *objectName)
{
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (widget->objectName() == objectName)
            return widget;
    }
    qFatal("there is no window %s", objectName);
}

// SPDX-License-Identifier: MIT

// Takes a picture of every window and message box of the program, over fake tools.
// Usage: ostrel_screenshots FOLDER light|dark   (run by scripts/screenshots.sh, which varies the scale)

#include "app/recordtypes.h"
#include "tests/fakes/faketools.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QApplication>
#include <QJsonArray>
#include <QLineEdit>
#include <QMenu>
#include <QPalette>
#include <QStyleFactory>
#include <QTest>

#include <cstdio>

namespace
{

void useDarkColours()
{
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    const QColor text(230, 230, 230);
    QPalette palette(window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, Qt::gray);
    palette.setColor(QPalette::Link, QColor(90, 170, 255));
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(palette);
}

class Camera
{
public:
    explicit Camera(QString folder) : folder(std::move(folder)) {}

    void take(QWidget *widget, const QString &name) const
    {
        QTest::qWait(100); // lets the window manager draw the last change
        if (!widget || !widget->grab().save(folder + '/' + name + ".png"))
            qFatal("cannot take the picture %s", qPrintable(name));
    }

    /// Answers the next message box with \a button after its picture was taken.
    void takeBox(WindowBench &bench, const QString &name, QMessageBox::StandardButton button) const
    {
        bench.boxes.answerNext(button, [this, name] { take(QApplication::activeModalWidget(), name); });
    }

private:
    QString folder;
};

void takeDialogs(WindowBench &bench, const Camera &camera)
{
    bench.child<QAction>("exportAllAction")->trigger();
    QWidget *exportWindow = topLevel("exportWindow");
    exportWindow->findChild<QLineEdit *>("exportDirEdit")->setText("/missing");
    camera.take(exportWindow, "export-dialog");
    exportWindow->findChild<QPushButton *>("exportButton")->click();
    camera.take(exportWindow, "export-dialog-error");
    exportWindow->close();
    bench.child<QAction>("readAudioTCAction")->trigger();
    camera.take(topLevel("audioTCWindow"), "reading-dialog");
    topLevel("audioTCWindow")->close();
}

void takeBoxes(WindowBench &bench, const Camera &camera)
{
    camera.takeBox(bench, "about", QMessageBox::Ok);
    bench.child<QAction>("aboutAction")->trigger();
    camera.takeBox(bench, "new-version", QMessageBox::Ok);
    QMetaObject::invokeMethod(bench.window.get(), "versionInfoCheck", Q_ARG(uint, 2), Q_ARG(uint, 0),
                              Q_ARG(QString, "Reads everything."),
                              Q_ARG(QUrl, QUrl("http://www.example.com/tool")));

    QMetaObject::invokeMethod(bench.window.get(), "onExportStart");
    QMetaObject::invokeMethod(bench.window.get(), "statusProgressUpdate", Q_ARG(int, 20), Q_ARG(int, 60),
                              Q_ARG(QString, "exporting files..."));
    camera.take(bench.window.get(), "exporting");
    camera.takeBox(bench, "cancel", QMessageBox::No);
    bench.cancelButton->click();
    camera.takeBox(bench, "quit", QMessageBox::No);
    bench.child<QAction>("exitAction")->trigger();
    camera.takeBox(bench, "export-failures", QMessageBox::Ok);
    QMetaObject::invokeMethod(
        bench.window.get(), "exportReady", Q_ARG(int, 2),
        Q_ARG(QStringList, QStringList({"A001.mov", "A002.mov", "A003.mov", "A004.mov", "A005.mov"})));
    camera.takeBox(bench, "export-done", QMessageBox::Ok);
    QMetaObject::invokeMethod(bench.window.get(), "exportReady", Q_ARG(int, 0),
                              Q_ARG(QStringList, QStringList()));
}

void takeMissingTools(WindowBench &bench, const Camera &camera)
{
    qputenv("PATH", "/nowhere");
    bench.window->reportMissingTools();
    camera.take(bench.window->findChild<QMessageBox *>(), "missing-tools");
}

} // namespace

int main(int argc, char *argv[])
{
    registerRecordTypes();
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("Usage: ostrel_screenshots FOLDER light|dark\n", stderr);
        return 2;
    }
    if (qstrcmp(argv[2], "dark") == 0)
        useDarkColours();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    qApp->setStyleSheet("QMessageBox { messagebox-text-interaction-flags: 5; }");

    const Camera camera(QString::fromLocal8Bit(argv[1]));
    WindowBench bench;
    camera.take(bench.window.get(), "empty");
    for (const char *name : {"A001_C001_0504AB.mov", "A001_C002_0504AB.mov", "T001 mix.wav", "T001 boom.wav"})
        bench.addFile(name);
    const QString failing =
        bench.addFile("A001_C003_a very long name that does not fit into its column at all.mov");
    faketools::setPlan(failing, {{"read", QJsonObject{{"exitCode", 205}, {"actions", QJsonArray{}}}}});
    if (!bench.import())
        qFatal("the import does not end");
    bench.fileList->selectRow(1);
    emit bench.fileList->cellClicked(1, 0);
    camera.take(bench.window.get(), "imported");
    takeDialogs(bench, camera);
    takeBoxes(bench, camera);
    takeMissingTools(bench, camera);
    return 0;
}

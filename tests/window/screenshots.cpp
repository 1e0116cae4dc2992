// SPDX-License-Identifier: MIT

// Takes a picture of every window and message box of the program, over fake tools.
// Usage: ostrel_screenshots FOLDER light|dark   (run by scripts/screenshots.sh, which varies the scale)

#include "app/applicationattributes.h"
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/windowfixture.h"

#include <QAction>
#include <QApplication>
#include <QDateTime>
#include <QFile>
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

/// What the table shows of one file of a day's recordings.
struct Recording {
    const char *name;
    const char *duration; ///< [s]
    const char *fileTC;   ///< empty = none
    const char *audioTC;  ///< empty = none
    double frameRate;     ///< [frames per second], as the reader finds it
    bool ntsc;
    int channel; ///< counted from 0
};

constexpr Recording recordings[] = {
    {"A001_C001_0504AB.mov", "154.2", "10:11:02:07", "10:11:12:13", 25, false, 1},
    {"A001_C002_0504AB.mov", "38.6", "10:19:44:00", "10:19:54:06", 25, false, 1},
    {"A001_C003_0504AB_a very long name that does not fit into its column at all.mov", "71.9", "", "", 0,
     false, 0},
    {"B001_C001_0504XY.mxf", "154.6", "00:00:00:00", "10:11:12:01", 25, false, 3},
    {"C014_second_unit.mov", "12.4", "", "13:09:59;28", 30, true, 0},
    {"T001_boom.wav", "160.0", "", "", 0, false, 0},
    {"T001_timecode.wav", "160.0", "", "10:11:08:22", 25, false, 0},
};

bool isSound(const Recording &recording)
{
    return QString(recording.name).endsWith(".wav");
}

QJsonObject probe(const Recording &recording)
{
    QJsonArray streams;
    if (!isSound(recording)) {
        streams += QJsonObject{{"codec_type", "video"},  {"codec_name", "h264"},
                               {"r_frame_rate", "25/1"}, {"index", 0},
                               {"width", 3840},          {"height", 2160}};
    }
    streams += QJsonObject{{"codec_type", "audio"},
                           {"codec_name", "pcm_s24le"},
                           {"channels", 2},
                           {"channel_layout", "stereo"},
                           {"index", isSound(recording) ? 0 : 1}};
    QJsonObject format{{"duration", recording.duration}};
    if (*recording.fileTC)
        format.insert("tags", QJsonObject{{"timecode", recording.fileTC}});
    return {{"streams", streams}, {"format", format}};
}

QJsonObject reading(const Recording &recording)
{
    if (!*recording.audioTC)
        return {{"exitCode", 205}, {"actions", QJsonArray{}}};
    return {{"json", QJsonObject{{"Timecode", recording.audioTC},
                                 {"DropFrame", recording.ntsc},
                                 {"NTSC", recording.ntsc},
                                 {"FrameRateFound", recording.frameRate},
                                 {"ChannelFound", recording.channel}}}};
}

/// Writes the files of the day; sound recorders stamp the parts of one take with one time.
QStringList writeRecordings(WindowFixture &fixture)
{
    const QDateTime take(QDate(2024, 5, 4), QTime(10, 13, 52));
    QStringList paths;
    for (const Recording &recording : recordings) {
        const QString path = fixture.addFile(recording.name);
        QFile file(path);
        if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(take, QFileDevice::FileModificationTime))
            qFatal("cannot stamp %s", recording.name);
        faketools::setPlan(
            path, {{"probe", QJsonObject{{"json", probe(recording)}}}, {"read", reading(recording)}});
        paths += path;
    }
    return paths;
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
    void takeBox(WindowFixture &fixture, const QString &name, QMessageBox::StandardButton button) const
    {
        fixture.boxes.answerNext(button, [this, name] { take(QApplication::activeModalWidget(), name); });
    }

private:
    QString folder;
};

void takeDialogs(WindowFixture &fixture, const Camera &camera)
{
    fixture.child<QAction>("exportAllAction")->trigger();
    QWidget *exportWindow = topLevel("exportWindow");
    exportWindow->findChild<QLineEdit *>("exportDirEdit")->setText("/media/day 1/export");
    camera.take(exportWindow, "export-dialog");
    exportWindow->findChild<QPushButton *>("exportButton")->click();
    camera.take(exportWindow, "export-dialog-error");
    exportWindow->close();
    fixture.child<QAction>("readAudioTCAction")->trigger();
    camera.take(topLevel("audioTCWindow"), "reading-dialog");
    topLevel("audioTCWindow")->close();
}

void takeBoxes(WindowFixture &fixture, const Camera &camera)
{
    camera.takeBox(fixture, "about", QMessageBox::Ok);
    fixture.child<QAction>("aboutAction")->trigger();
    camera.takeBox(fixture, "new-version", QMessageBox::Ok);
    QMetaObject::invokeMethod(fixture.window.get(), "versionInfoCheck", Q_ARG(uint, 2), Q_ARG(uint, 0),
                              Q_ARG(QString, "Reads everything."),
                              Q_ARG(QUrl, QUrl("http://www.example.com/tool")));

    fixture.beginExport();
    QMetaObject::invokeMethod(fixture.window.get(), "statusProgressUpdate", Q_ARG(int, 20), Q_ARG(int, 60),
                              Q_ARG(QString, "exporting files..."));
    camera.take(fixture.window.get(), "exporting");
    camera.takeBox(fixture, "cancel", QMessageBox::No);
    fixture.cancelButton->click();
    camera.takeBox(fixture, "quit", QMessageBox::No);
    fixture.child<QAction>("exitAction")->trigger();
    camera.takeBox(fixture, "export-failures", QMessageBox::Ok);
    fixture.endExport(2, {"A001.mov", "A002.mov", "A003.mov", "A004.mov", "A005.mov"});
    camera.takeBox(fixture, "export-done", QMessageBox::Ok);
    fixture.endExport(0);
}

void takeMissingTools(WindowFixture &fixture, const Camera &camera)
{
    qputenv("PATH", "/nowhere");
    fixture.window->reportMissingTools();
    camera.take(fixture.window->findChild<QMessageBox *>(), "missing-tools");
}

} // namespace

int main(int argc, char *argv[])
{
    registerRecordTypes();
    setApplicationAttributes();
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
    WindowFixture fixture;
    camera.take(fixture.window.get(), "empty");
    fixture.drop(writeRecordings(fixture));
    if (!QTest::qWaitFor([&fixture] { return fixture.status() == "Status: import ready"; }, longWait))
        qFatal("the import does not end");
    fixture.fileList->selectRow(1);
    emit fixture.fileList->cellClicked(1, 0);
    camera.take(fixture.window.get(), "imported");
    takeDialogs(fixture, camera);
    takeBoxes(fixture, camera);
    takeMissingTools(fixture, camera);
    return 0;
}

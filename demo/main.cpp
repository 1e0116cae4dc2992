// SPDX-License-Identifier: MIT
#include "app/mainwindow.h"
#include "app/records/recordtypes.h"
#include "demo/demofolder.h"
#include "demo/reporttable.h"
#include "testkit/media/exportedfile.h"
#include "testkit/media/mediamaker.h"
#include "testkit/media/shootday.h"
#include "testkit/media/verdict.h"
#include "testkit/windowdriver/windowdriver.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace
{

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

int fail(const QString &problem)
{
    QTextStream(stderr) << "ostrel-demo: " << problem << '\n';
    return 1;
}

// Pictures come out as QuickTime, sound stays sound.
QString exportedName(const mediakit::Recording &recording)
{
    const QString suffix = mediakit::isSoundFile(recording) ? ".WAV" : ".MOV";
    return QFileInfo(recording.path).completeBaseName() + suffix;
}

struct Outcome {
    Verdict verdict;
    QStringList cells; ///< of the printed table
};

Outcome check(const mediakit::Recording &recording, const WindowDriver &driver, const DemoFolder &folder)
{
    const QString name = exportedName(recording);
    std::optional<ExportedFile> exported;
    if (const QString path = QDir(folder.exported()).filePath(name); QFile::exists(path))
        exported = readExportedFile(path);

    QString readBack;
    if (exported)
        readBack =
            exported->timeReference ? QString("sample %1").arg(*exported->timeReference) : exported->timecode;
    const QString fileName = QFileInfo(recording.path).fileName();
    const QStringList row = driver.row(fileName);
    Outcome outcome{judge(recording, exported), {}};
    if (row.isEmpty())
        outcome.verdict = {false, "WRONG: not in the window"};
    outcome.cells = QStringList{fileName, row.value(2),        row.value(3), exported ? name : QString("-"),
                                readBack, outcome.verdict.text};
    return outcome;
}

int report(const QVector<mediakit::Recording> &recordings, const WindowDriver &driver,
           const DemoFolder &folder)
{
    QVector<QStringList> rows;
    int wrong = 0;
    for (const mediakit::Recording &recording : recordings) {
        const Outcome outcome = check(recording, driver, folder);
        rows += outcome.cells;
        wrong += outcome.verdict.right ? 0 : 1;
    }
    const QString table =
        layOutTable({"File", "File TC", "Audio TC", "Exported file", "Read back", "Verdict"}, rows);
    QFile file(folder.report());
    if (!file.open(QIODevice::WriteOnly) || file.write(table.toUtf8()) < 0)
        return fail(file.errorString());

    say('\n' + table);
    if (wrong > 0)
        return fail(QString("%1 of %2 files are wrong").arg(wrong).arg(recordings.size()));
    say(QString("All %1 files are right. Screenshots: %2").arg(recordings.size()).arg(folder.screenshots()));
    return 0;
}

int showMainJob(const DemoFolder &folder)
{
    const QVector<mediakit::Recording> recordings = mediakit::shootDay();
    say(QString("Making %1 camera and sound files in %2").arg(recordings.size()).arg(folder.media()));
    const QString problem = mediakit::makeAll(recordings, folder.media());
    if (!problem.isEmpty())
        return fail(problem);

    MainWindow window;
    window.show();
    WindowDriver driver(window, folder.screenshots());
    driver.takeScreenshot("1-before");

    say("Dropping the folder on the window");
    driver.dropFolder(folder.media());
    if (!driver.waitForStatus("Status: import ready", "2-importing"))
        return fail("the import did not end");
    driver.clickRow(QFileInfo(recordings.first().path).fileName());
    driver.takeScreenshot("3-imported");
    driver.lookAtReadingDialog();

    say("Exporting all files as QuickTime, with the timecode muted");
    const QString result = driver.exportAll(folder.exported(), "QuickTime - pass trough", "PCM 24 bit");
    if (result.isEmpty())
        return fail("the export did not end with a message");
    driver.takeScreenshot("7-after");
    return report(recordings, driver, folder);
}

} // namespace

int main(int argc, char *argv[])
{
    registerRecordTypes();
    const QApplication application(argc, argv);
    QApplication::setApplicationName("ostrel-demo");

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Shows the main job of Ostrel Timecode Tool: makes camera and sound files "
        "with timecode, imports and exports\nthem with the real window, and checks "
        "every written file. Exits with 0 when all are right.");
    parser.addHelpOption();
    parser.addPositionalArgument("folder", "Keeps the files, the screenshots and the report.");
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        return fail("give one folder; see --help");

    const DemoFolder folder(parser.positionalArguments().constFirst());
    const QString refusal = folder.prepare();
    return refusal.isEmpty() ? showMainJob(folder) : fail(refusal);
}

// SPDX-License-Identifier: MIT
#include "bench/realtools/floor.h"
#include "bench/realtools/mediafolder.h"
#include "bench/support/program.h"
#include "bench/support/realwindow.h"
#include "bench/support/usage.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>

using namespace bench;

namespace
{

constexpr int beat = 10; // [ms] of the watch: more beats would count as work of the program

/// Drops \a folder and returns when all of it has been imported. Throws Failure.
void import(RealWindow &window, const QString &folder)
{
    window.restartWatch();
    window.drop(folder);
    RealWindow::waitUntil([&window] { return !window.table().pendingWork().isBusy(); }, "the import");
    const QString status = window.window.findChild<QLabel *>("statusLabel")->text();
    if (status != "Status: import ready")
        throw Failure("the import ends with: " + status);
}

/// Exports all files and returns when the window shows the result. Throws Failure when a file failed.
void exportAll(RealWindow &window, const ExportOptions &options)
{
    QString result;
    QTimer timer; // runs inside of the message box, too
    QObject::connect(&timer, &QTimer::timeout, &window.window, [&result] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            result = box->text();
            box->accept();
        }
    });
    timer.start(20);
    window.restartWatch();
    window.table().exportFiles(options);
    RealWindow::waitUntil([&result] { return !result.isEmpty(); }, "the export");
    if (result != "Ostrel did the job!")
        throw Failure(result.section('\n', 0, 1).replace('\n', ' '));
}

ExportOptions optionsFor(const QTemporaryDir &folder)
{
    constexpr int passThrough = 5; // into QuickTime
    ExportOptions options;
    options.exportDir = folder.path();
    options.videoType = passThrough;
    options.exportAll = true;
    return options;
}

/// The records that the file table passes for an export.
QVector<FileData> exportedRecords(RealWindow &window)
{
    const QTemporaryDir folder;
    QVector<FileData> records;
    const auto connection = QObject::connect(&window.table(), &FileList::exportFilesReq,
                                             [&records](const QVector<FileData> &files) { records = files; });
    exportAll(window, optionsFor(folder));
    QObject::disconnect(connection);
    return records;
}

/// A round of work by \a program, in \a window, and by the floor's \a jobs: what disturbs the machine
/// for a while disturbs both, and which one comes first changes from round to round.
QJsonObject measuredRound(quint64 round, const RealWindow &window, const std::function<void()> &program,
                          const std::vector<Job> &jobs)
{
    const auto floor = [&jobs] { return measured([&jobs] { runJobs(jobs); }); };
    QJsonObject floorFigures = round % 2 == 0 ? floor() : QJsonObject();
    double longestBlock = 0.0;
    const QJsonObject figures = measured([&] {
        program();
        longestBlock = window.longestBlock();
    });
    if (floorFigures.isEmpty())
        floorFigures = floor();
    return {{"program", figures}, {"floor", floorFigures}, {"block_ms", longestBlock}};
}

void printRound(const QString &work, int files, QJsonObject figures)
{
    figures.insert("work", work);
    figures.insert("files", files);
    print("round", figures);
}

void measureImports(const QString &folder, int files, quint64 rounds)
{
    const QTemporaryDir extracted;
    const std::vector<Job> floor =
        importJobs(MediaFolder::filesIn(folder), MediaFolder::kinds, extracted.path());
    const auto batch = [&folder] {
        return runSilently(QCoreApplication::applicationDirPath() + "/ostrel-batch", {"read", folder})
            .toJson();
    };
    for (quint64 round = 0; round < rounds; ++round) {
        // Next to the window's import; which one comes first changes, as it does with the floor.
        const QJsonObject batchBefore = round % 2 != 0 ? batch() : QJsonObject();
        RealWindow window(beat);
        QJsonObject figures = measuredRound(
            round, window, [&] { import(window, folder); }, floor);
        figures.insert("batch", batchBefore.isEmpty() ? batch() : batchBefore);
        printRound("import", files, figures);
    }
}

void measureExports(const QString &folder, int files, quint64 rounds)
{
    RealWindow window(beat);
    import(window, folder);
    const QVector<FileData> records = exportedRecords(window);
    for (quint64 round = 0; round < rounds; ++round) {
        const QTemporaryDir target;
        const QTemporaryDir floorTarget;
        const std::vector<Job> floor = exportJobs(records, optionsFor(floorTarget));
        printRound("export", files,
                   measuredRound(
                       round, window, [&] { exportAll(window, optionsFor(target)); }, floor));
    }
}

} // namespace

int main(int argc, char *argv[])
{
    prepareApplication();
    const QApplication application(argc, argv);
    Program program(
        "tools-benchmark",
        "Imports media made on the spot with the real window and the real tools, and runs the same child "
        "processes with nothing in between, in turn; and reads them with ostrel-batch.");
    program.addSwitch("exports", "Instead of imports: small exports with picture and sound passed through");
    program.addOption("files", "Numbers of files", "list", "50,200,800");
    program.addOption("rounds", "Rounds for each number of files", "number", "3");
    return program.run([&program] {
        const QVector<int> sizes = program.numbers("files");
        const quint64 rounds = program.number("rounds");
        program.printRun();
        MediaFolder media;
        for (const int files : sizes)
            (program.isSet("exports") ? measureExports : measureImports)(media.folderWith(files), files,
                                                                         rounds);
        return 0;
    });
}

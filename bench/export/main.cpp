// SPDX-License-Identifier: MIT
#include "app/applicationattributes.h"
#include "app/recordtypes.h"
#include "bench/export/exportfloor.h"
#include "bench/realtools/mediafolder.h"
#include "bench/realtools/rounds.h"
#include "bench/realtools/workingwindow.h"
#include "bench/support/benchmarkprogram.h"
#include "filelist/filelist.h"

#include <QApplication>

#include <memory>

using namespace bench;

namespace
{

constexpr int passThrough = 5; // into QuickTime

ExportOptions optionsFor(const QTemporaryDir &folder)
{
    ExportOptions options;
    options.exportDir = folder.path();
    options.videoType = passThrough;
    options.exportAll = true;
    return options;
}

/// The records that the file table hands over for an export.
QVector<FileData> exportedRecords(WorkingWindow &window, const ExportOptions &options)
{
    QVector<FileData> records;
    const auto connection =
        QObject::connect(window.mainWindow().findChild<FileList *>("fileList"), &FileList::exportFilesReq,
                         [&records](const QVector<FileData> &files) { records = files; });
    window.exportAll(options);
    QObject::disconnect(connection);
    return records;
}

Rounds exportRounds(MediaFolder &media, int files, int count)
{
    tellProgress(QString("importing %1 files").arg(files));
    WorkingWindow window;
    window.import(media.folderWith(files));
    const QTemporaryDir firstFolder;
    const QVector<FileData> records = exportedRecords(window, optionsFor(firstFolder));

    Rounds rounds(files);
    for (int round = 0; round < count; ++round) {
        tellProgress(QString("%1 exports, round %2 of %3").arg(files).arg(round + 1).arg(count));
        const QTemporaryDir target;
        const QTemporaryDir floorTarget;
        const ExportFloor floor(records, optionsFor(floorTarget));
        rounds.measure([&] { window.exportAll(optionsFor(target)); }, [&] { floor.run(); });
        rounds.noteBlock(window.longestBlock());
    }
    return rounds;
}

} // namespace

int main(int argc, char *argv[])
{
    registerRecordTypes();
    setApplicationAttributes();
    const QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    BenchmarkProgram program(
        "export-benchmark",
        "Exports small files with the real window and the real tools, picture and sound passed "
        "through, and runs the same child processes with nothing in between, in turn.");
    program.parser().addOption({"files", "Numbers of files (100).", "list", "100"});
    program.parser().addOption({"rounds", "Rounds for each number of files (3).", "number", "3"});
    return program.run([&program] {
        const QVector<int> sizes = program.numbers("files");
        const int count = program.number("rounds");
        MediaFolder media;
        QVector<Rounds> all;
        for (const int files : sizes)
            all += exportRounds(media, files, count);
        return outcomeOf("export", all);
    });
}

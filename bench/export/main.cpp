// SPDX-License-Identifier: MIT
#include "bench/export/exportfloor.h"
#include "bench/realtools/realtoolsprogram.h"
#include "bench/realtools/workingwindow.h"
#include "filelist/filelist.h"

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

/// The records that the file table passes for an export.
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
    WorkingWindow window;
    window.import(media.folderWith(files));
    const QTemporaryDir firstFolder;
    const QVector<FileData> records = exportedRecords(window, optionsFor(firstFolder));

    Rounds rounds(files);
    for (int round = 0; round < count; ++round) {
        tellRound("export", files, round, count);
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
    return runRealToolsBenchmark(
        argc, argv,
        {"export",
         "Exports small files with the real window and the real tools, picture and sound passed through, and "
         "runs the same child processes with nothing in between, in turn.",
         "100", exportRounds});
}

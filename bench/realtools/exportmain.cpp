// SPDX-License-Identifier: MIT
#include "bench/realtools/floor.h"
#include "bench/realtools/rounds.h"
#include "bench/realtools/workingwindow.h"

using namespace bench;

namespace
{

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
QVector<FileData> exportedRecords(WorkingWindow &window)
{
    const QTemporaryDir folder;
    QVector<FileData> records;
    const auto connection = QObject::connect(&window.table(), &FileList::exportFilesReq,
                                             [&records](const QVector<FileData> &files) { records = files; });
    window.exportAll(optionsFor(folder));
    QObject::disconnect(connection);
    return records;
}

void measureExports(MediaFolder &media, int files, int count)
{
    WorkingWindow window;
    window.import(media.folderWith(files));
    const QVector<FileData> records = exportedRecords(window);
    for (int round = 0; round < count; ++round) {
        const QTemporaryDir target;
        const QTemporaryDir floorTarget;
        const std::vector<Job> floor = exportJobs(records, optionsFor(floorTarget));
        QJsonObject figures = measuredRound(
            round, [&] { window.exportAll(optionsFor(target)); }, [&] { runJobs(floor); });
        figures.insert("block_ms", window.longestBlock());
        printRound("export", files, figures);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    return runRealToolsBenchmark(
        argc, argv,
        {"export",
         "Exports small files with the real window and the real tools, picture and sound passed through, and "
         "runs the same child processes with nothing in between, in turn.",
         "100", measureExports});
}

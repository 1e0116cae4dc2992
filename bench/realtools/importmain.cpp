// SPDX-License-Identifier: MIT
#include "bench/realtools/floor.h"
#include "bench/realtools/rounds.h"
#include "bench/realtools/workingwindow.h"
#include "bench/support/usage.h"

#include <QCoreApplication>

using namespace bench;

namespace
{

void measureImports(MediaFolder &media, int files, int count)
{
    const QString folder = media.folderWith(files);
    const QTemporaryDir extracted;
    const std::vector<Job> floor =
        importJobs(MediaFolder::filesIn(folder), MediaFolder::kinds, extracted.path());
    const auto batch = [&folder] {
        return runSilently(QCoreApplication::applicationDirPath() + "/ostrel-batch", {"read", folder})
            .toJson();
    };
    for (int round = 0; round < count; ++round) {
        // Next to the window's import; which one comes first changes, as it does with the floor.
        QJsonObject batchFigures = round % 2 != 0 ? batch() : QJsonObject();
        WorkingWindow window;
        QJsonObject figures = measuredRound(
            round, [&] { window.import(folder); }, [&] { runJobs(floor); });
        figures.insert("batch", batchFigures.isEmpty() ? batch() : batchFigures);
        figures.insert("block_ms", window.longestBlock());
        printRound("import", files, figures);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    return runRealToolsBenchmark(
        argc, argv,
        {"import",
         "Imports media made on the spot with the real window and the real tools, and runs the same child "
         "processes with nothing in between, in turn; and reads them with ostrel-batch.",
         "50,200,800", measureImports});
}

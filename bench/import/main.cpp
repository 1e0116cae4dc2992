// SPDX-License-Identifier: MIT
#include "bench/realtools/batchread.h"
#include "bench/realtools/importfloor.h"
#include "bench/realtools/realtoolsprogram.h"
#include "bench/realtools/workingwindow.h"

using namespace bench;

namespace
{

Rounds importRounds(MediaFolder &media, int files, int count)
{
    const QString folder = media.folderWith(files);
    const ImportFloor floor(MediaFolder::filesIn(folder));
    Rounds rounds(files);
    for (int round = 0; round < count; ++round) {
        tellRound("import", files, round, count);
        // Next to the window's import; which one comes first changes, as it does with the floor.
        const bool isBatchFirst = round % 2 != 0;
        Usage batch = isBatchFirst ? batchRead(folder) : Usage();
        WorkingWindow window;
        rounds.measure([&] { window.import(folder); }, [&] { floor.run(); });
        if (!isBatchFirst)
            batch = batchRead(folder);
        rounds.noteBatch(batch);
        rounds.noteBlock(window.longestBlock());
    }
    return rounds;
}

} // namespace

int main(int argc, char *argv[])
{
    return runRealToolsBenchmark(
        argc, argv,
        {"import",
         "Imports media made on the spot with the real window and the real tools, and runs the same child "
         "processes with nothing in between, in turn; and reads them with ostrel-batch.",
         "50,200,800", importRounds});
}

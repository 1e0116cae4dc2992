// SPDX-License-Identifier: MIT
#include "app/applicationattributes.h"
#include "app/recordtypes.h"
#include "bench/realtools/importfloor.h"
#include "bench/realtools/mediafolder.h"
#include "bench/realtools/rounds.h"
#include "bench/realtools/workingwindow.h"
#include "bench/support/benchmarkprogram.h"

#include <QApplication>

using namespace bench;

namespace
{

Rounds importRounds(MediaFolder &media, int files, int count)
{
    const QString folder = media.folderWith(files);
    const ImportFloor floor(MediaFolder::filesIn(folder));
    Rounds rounds(files);
    for (int round = 0; round < count; ++round) {
        tellProgress(QString("%1 files, round %2 of %3").arg(files).arg(round + 1).arg(count));
        WorkingWindow window;
        rounds.measure([&] { window.import(folder); }, [&] { floor.run(); });
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
        "import-benchmark",
        "Imports media made on the spot with the real window and the real tools, and runs the "
        "same child processes with nothing in between, in turn.");
    program.parser().addOption({"files", "Numbers of files (50,200,800).", "list", "50,200,800"});
    program.parser().addOption({"rounds", "Rounds for each number of files (3).", "number", "3"});
    return program.run([&program] {
        const QVector<int> sizes = program.numbers("files");
        const int count = program.number("rounds");
        MediaFolder media;
        QVector<Rounds> all;
        for (const int files : sizes)
            all += importRounds(media, files, count);
        return outcomeOf("import", all);
    });
}

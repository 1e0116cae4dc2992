// SPDX-License-Identifier: MIT
#include "bench/realtools/realtoolsprogram.h"

#include "bench/support/benchmarkprogram.h"
#include "bench/support/windowapplication.h"

namespace bench
{

int runRealToolsBenchmark(int argc, char **argv, const RealToolsBenchmark &benchmark)
{
    const WindowApplication application(argc, argv);
    BenchmarkProgram program(benchmark.work + "-benchmark", benchmark.description);
    program.addOption("files", "Numbers of files", benchmark.usualFiles);
    program.addOption("rounds", "Rounds for each number of files", "3");
    return program.run([&program, &benchmark] {
        const QVector<int> sizes = program.numbers("files");
        const int count = program.number("rounds");
        MediaFolder media;
        QVector<Rounds> all;
        for (const int files : sizes)
            all += benchmark.measure(media, files, count);
        return outcomeOf(benchmark.work, all);
    });
}

void tellRound(const QString &work, int files, int round, int count)
{
    tellProgress(QString("%1 of %2 files, round %3 of %4").arg(work).arg(files).arg(round + 1).arg(count));
}

} // namespace bench

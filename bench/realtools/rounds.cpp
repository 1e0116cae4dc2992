// SPDX-License-Identifier: MIT
#include "bench/realtools/rounds.h"

#include "bench/support/program.h"
#include "bench/support/realwindow.h"
#include "bench/support/usage.h"

#include <QApplication>

namespace bench
{

int runRealToolsBenchmark(int argc, char **argv, const RealToolsBenchmark &benchmark)
{
    prepareApplication();
    const QApplication application(argc, argv);
    Program program(benchmark.work + "-benchmark", benchmark.description);
    program.addOption("files", "Numbers of files", "list", benchmark.usualFiles);
    program.addOption("rounds", "Rounds for each number of files", "number", "3");
    return program.run([&program, &benchmark] {
        const QVector<int> sizes = program.numbers("files");
        const int count = program.number("rounds");
        program.printRun();
        MediaFolder media;
        for (const int files : sizes)
            benchmark.measure(media, files, count);
        return 0;
    });
}

QJsonObject measuredRound(int round, const std::function<void()> &program, const std::function<void()> &floor)
{
    const bool isFloorFirst = round % 2 == 0;
    QJsonObject floorFigures = isFloorFirst ? measured(floor) : QJsonObject();
    const QJsonObject figures = measured(program);
    if (!isFloorFirst)
        floorFigures = measured(floor);
    return {{"program", figures}, {"floor", floorFigures}};
}

void printRound(const QString &work, int files, QJsonObject figures)
{
    figures.insert("work", work);
    figures.insert("files", files);
    print("round", figures);
}

} // namespace bench

// SPDX-License-Identifier: MIT
#include "bench/support/benchmarkprogram.h"
#include "bench/support/windowapplication.h"
#include "bench/window/foreigntree.h"
#include "bench/window/hangingtools.h"
#include "bench/window/windowrun.h"

#include <algorithm>

using namespace bench;

namespace
{

constexpr int rowsOfTheBlockLimit = 10'000;
constexpr double longestBlockLimit = 50; // [ms]
constexpr double growthLimit = 1.5;      // of the cost per row, from the fewest rows to the most
constexpr double passingOnLimit = 2.0;   // [ms] of a timecode that all rows take over
constexpr double memoryLimit = 6.0;      // [KiB per row]
constexpr double answerLimit = 100;      // [ms]
constexpr double quitLimit = 1.0;        // [s]

double microsecondsPerRow(const WindowRun &run, const Step &step)
{
    return step.cpuTime * 1e6 / run.rows;
}

Table tableOf(const QString &title, const QVector<WindowRun> &runs,
              double (*figure)(const WindowRun &, const Step &))
{
    Table table{title, {"rows"}, {}};
    for (const Step &step : runs.first().steps)
        table.columns += step.name;
    for (const WindowRun &run : runs) {
        QVector<double> row{static_cast<double>(run.rows)};
        for (const Step &step : run.steps)
            row += figure(run, step);
        table.rows += row;
    }
    return table;
}

Table memoryTable(const QString &title, const QVector<WindowRun> &runs)
{
    Table table{title, {"rows", "KiB per row", "KiB of probe JSON per row, for comparison"}, {}};
    for (const WindowRun &run : runs)
        table.rows += {static_cast<double>(run.rows), run.memoryPerRow / 1024, run.probeJsonPerRow / 1024};
    return table;
}

Chart chartOf(const Table &table, const QString &vertical)
{
    Chart chart{table.title, "rows", vertical, {}};
    for (int column = 1; column < table.columns.size(); ++column) {
        Series series{table.columns.at(column), {}};
        for (const QVector<double> &row : table.rows)
            series.points += QPointF(row.first(), row.at(column));
        chart.series += series;
    }
    return chart;
}

/// Whether each result of \a step concerns every row, so that it costs more where there are more.
bool concernsEveryRow(Shoot::Kind kind, const Step &step)
{
    return kind == Shoot::OneMoment && step.name.startsWith("read");
}

void addGrowthChecks(Shoot::Kind kind, const QVector<WindowRun> &runs, Figures &figures)
{
    const auto [fewest, most] = std::minmax_element(
        runs.cbegin(), runs.cend(), [](const WindowRun &a, const WindowRun &b) { return a.rows < b.rows; });
    if (most->rows == fewest->rows)
        return;
    for (int i = 0; i < fewest->steps.size(); ++i) {
        if (concernsEveryRow(kind, fewest->steps.at(i)))
            continue;
        const double growth =
            microsecondsPerRow(*most, most->steps.at(i)) / microsecondsPerRow(*fewest, fewest->steps.at(i));
        figures.checks += Check{QString("%1, %2: cost per row at %3 rows to that at %4")
                                    .arg(Shoot::nameOf(kind), fewest->steps.at(i).name)
                                    .arg(most->rows)
                                    .arg(fewest->rows),
                                growth, growthLimit};
    }
}

void addChecks(Shoot::Kind kind, const QVector<WindowRun> &runs, Figures &figures)
{
    const QString name = Shoot::nameOf(kind);
    addGrowthChecks(kind, runs, figures);
    for (const WindowRun &run : runs) {
        for (const Step &step : run.steps) {
            if (run.rows > rowsOfTheBlockLimit)
                continue;
            const QString where = QString("%1, %2, %3 rows: ").arg(name, step.name).arg(run.rows);
            figures.checks += Check{where + "longest block [ms]", step.longestBlock, longestBlockLimit};
            if (concernsEveryRow(kind, step)) { // every second result is a timecode
                figures.checks += Check{where + "CPU time of a timecode [ms]", 2e3 * step.cpuTime / run.rows,
                                        passingOnLimit};
            }
        }
        figures.checks += Check{QString("%1, %2 rows: memory per row [KiB]").arg(name).arg(run.rows),
                                run.memoryPerRow / 1024, memoryLimit};
    }
}

void addKind(Shoot::Kind kind, const QVector<int> &sizes, Outcome &outcome)
{
    const QString name = Shoot::nameOf(kind);
    QVector<WindowRun> runs;
    for (const int rows : sizes) {
        tellProgress(QString("%1, %2 rows").arg(name).arg(rows));
        runs += runWindow(kind, rows);
    }
    const Table cost = tableOf(name + ": CPU time of the window's thread", runs, &microsecondsPerRow);
    const Table time = tableOf(name + ": time", runs, [](const WindowRun &run, const Step &step) {
        return step.time * 1e6 / run.rows;
    });
    const Table block = tableOf(name + ": longest block of the event loop", runs,
                                [](const WindowRun &, const Step &step) { return step.longestBlock; });
    outcome.figures.tables += {cost, time, block, memoryTable(name + ": heap after the import", runs)};
    outcome.charts += {chartOf(cost, "µs per row"), chartOf(block, "ms")};
    addChecks(kind, runs, outcome.figures);
}

void addForeignTree(int files, Outcome &outcome)
{
    tellProgress(QString("a tree of %1 foreign files").arg(files));
    const ForeignTreeRun run = runForeignTree(files);
    outcome.figures.tables +=
        Table{"A folder tree without media",
              {"files", "ms to the busy pointer", "ms of the longest block", "s to quit meanwhile"},
              {{static_cast<double>(files), run.answerTime, run.longestBlock, run.quitTime}}};
    outcome.figures.checks += Check{"foreign files: the busy pointer [ms]", run.answerTime, answerLimit};
    outcome.figures.checks += Check{"foreign files: quitting meanwhile [s]", run.quitTime, quitLimit};
}

} // namespace

int main(int argc, char *argv[])
{
    const WindowApplication application(argc, argv);
    BenchmarkProgram program(
        "window-benchmark",
        "Feeds the real window with results at full speed and measures what a row costs, how "
        "long the event loop is blocked, and the memory of a row.");
    program.addOption("rows", "Numbers of rows", "1000,10000,50000");
    program.addOption("foreign", "Files of a folder tree without media; 0 leaves it out", "100000");
    return program.run([&program] {
        const QVector<int> sizes = program.numbers("rows");
        const int foreignFiles = program.number("foreign", 0);
        const HangingTools tools;
        Outcome outcome;
        for (int kind = 0; kind < Shoot::KindCount; ++kind)
            addKind(static_cast<Shoot::Kind>(kind), sizes, outcome);
        if (foreignFiles > 0)
            addForeignTree(foreignFiles, outcome);
        return outcome;
    });
}

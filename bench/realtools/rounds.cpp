// SPDX-License-Identifier: MIT
#include "bench/realtools/rounds.h"

#include "bench/support/statistics.h"

namespace bench
{

namespace
{

constexpr double timeLimit = 1.05; // times the floor
constexpr double cpuLimit = 3.0;   // [% of the CPU time of the child processes]

constexpr double batchTimeLimit = 1.02; // times the window
constexpr double batchCpuLimit = 2.0;   // [% of the CPU time of the child processes]

double timeRatio(const Usage &program, const Usage &floor)
{
    return program.time / floor.time;
}

double cpuShare(const Usage &program, const Usage &)
{
    return 100.0 * program.ownCpuTime / program.childCpuTime;
}

Table timeTable(const QString &work, const QVector<Rounds> &all)
{
    Table table{work + ": time and CPU time, medians",
                {"files", "s", "s of the floor", "ratio of a round", "s CPU of the child processes",
                 "s CPU of the floor's", "s CPU of our process", "% of the child processes'",
                 "s CPU of the bare launcher"},
                {}};
    for (const Rounds &rounds : all) {
        table.rows +=
            {static_cast<double>(rounds.fileCount()),
             rounds.medianOf([](const Usage &program, const Usage &) { return program.time; }),
             rounds.medianOf([](const Usage &, const Usage &floor) { return floor.time; }),
             rounds.medianOf(timeRatio),
             rounds.medianOf([](const Usage &program, const Usage &) { return program.childCpuTime; }),
             rounds.medianOf([](const Usage &, const Usage &floor) { return floor.childCpuTime; }),
             rounds.medianOf([](const Usage &program, const Usage &) { return program.ownCpuTime; }),
             rounds.medianOf(cpuShare),
             rounds.medianOf([](const Usage &, const Usage &floor) { return floor.ownCpuTime; })};
    }
    return table;
}

Table processTable(const QString &work, const QVector<Rounds> &all)
{
    Table table{work + ": memory and processes",
                {"files", "MiB at most", "processes at most", "processes on average", "floor's on average",
                 "ms of the longest block"},
                {}};
    for (const Rounds &rounds : all) {
        table.rows +=
            {static_cast<double>(rounds.fileCount()),
             rounds.medianOf([](const Usage &program, const Usage &) { return program.peakMemory; }),
             rounds.medianOf([](const Usage &program, const Usage &) { return program.mostProcesses(); }),
             rounds.medianOf([](const Usage &program, const Usage &) { return program.meanProcesses(); }),
             rounds.medianOf([](const Usage &, const Usage &floor) { return floor.meanProcesses(); }),
             rounds.longestBlockSeen()};
    }
    return table;
}

/// Of the rounds in which ostrel-batch did the same.
Table batchTable(const QString &work, const QVector<Rounds> &all)
{
    Table table{work + ": the same by ostrel-batch, medians",
                {"files", "s", "times the window", "s CPU of its child processes", "s CPU of its own",
                 "% of the child processes'"},
                {}};
    for (const Rounds &rounds : all) {
        if (!rounds.hasBatch())
            continue;
        table.rows +=
            {static_cast<double>(rounds.fileCount()),
             rounds.medianOfBatch([](const Usage &batch, const Usage &) { return batch.time; }),
             rounds.medianOfBatch(timeRatio),
             rounds.medianOfBatch([](const Usage &batch, const Usage &) { return batch.childCpuTime; }),
             rounds.medianOfBatch([](const Usage &batch, const Usage &) { return batch.ownCpuTime; }),
             rounds.medianOfBatch(cpuShare)};
    }
    return table;
}

Series column(const Table &table, int number, const QString &name)
{
    Series series{name, {}};
    for (const QVector<double> &row : table.rows)
        series.points += QPointF(row.first(), row.at(number));
    return series;
}

} // namespace

void Rounds::measure(const std::function<void()> &program, const std::function<void()> &floor)
{
    Pair pair;
    if (pairs.size() % 2) {
        pair.program = measured(program);
        pair.floor = measured(floor);
    } else {
        pair.floor = measured(floor);
        pair.program = measured(program);
    }
    pairs += pair;
}

double Rounds::medianOf(double (*figure)(const Usage &program, const Usage &floor)) const
{
    QVector<double> values;
    for (const Pair &pair : pairs)
        values += figure(pair.program, pair.floor);
    return median(values);
}

double Rounds::medianOfBatch(double (*figure)(const Usage &batch, const Usage &program)) const
{
    QVector<double> values;
    for (const Pair &pair : pairs)
        values += figure(pair.batch, pair.program);
    return median(values);
}

Outcome outcomeOf(const QString &work, const QVector<Rounds> &all)
{
    Outcome outcome;
    const Table times = timeTable(work, all);
    outcome.figures.tables += {times, processTable(work, all)};
    for (const Rounds &rounds : all) {
        const QString name = QString("%1 of %2 files: ").arg(work).arg(rounds.fileCount());
        outcome.figures.checks +=
            Check{name + "time to that of the floor", rounds.medianOf(timeRatio), timeLimit};
        outcome.figures.checks +=
            Check{name + "our CPU time [% of the child processes']", rounds.medianOf(cpuShare), cpuLimit};
        if (!rounds.hasBatch())
            continue;
        outcome.figures.checks += Check{name + "time of ostrel-batch to that of the window",
                                        rounds.medianOfBatch(timeRatio), batchTimeLimit};
        outcome.figures.checks += Check{name + "CPU time of ostrel-batch [% of its child processes']",
                                        rounds.medianOfBatch(cpuShare), batchCpuLimit};
    }
    const Table batch = batchTable(work, all);
    if (!batch.rows.isEmpty())
        outcome.figures.tables += batch;
    outcome.charts += Chart{work, "files", "s", {column(times, 1, "program"), column(times, 2, "floor")}};
    outcome.charts +=
        Chart{"CPU time of our process", "files", "% of the child processes'", {column(times, 7, "program")}};
    outcome.charts += Chart{QString("Processes, %1 files").arg(all.last().fileCount()),
                            "s",
                            "processes alive",
                            {{"program", all.last().processesOverTime()}},
                            Chart::Linear};
    return outcome;
}

} // namespace bench

// SPDX-License-Identifier: MIT
#include "bench/reader/processtimer.h"
#include "bench/support/benchmarkprogram.h"
#include "bench/support/statistics.h"
#include "testkit/media/mediamaker.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <utility>

using namespace bench;

namespace
{

constexpr double limit = 10.0;  // [ms] more than opening the file
constexpr double seconds = 3.0; // what the import extracts

/// A sound file of \a channels channels whose last one carries the timecode.
QString makeFile(int channels, const QTemporaryDir &folder)
{
    constexpr double frequency = 440.0; // [Hz]
    testsignals::LtcTime start;
    start.hours = 10;
    mediakit::Track track(channels - 1, mediakit::toneChannel(frequency));
    track += mediakit::timecodeChannel(start, testsignals::LtcRate{});
    const QString name = QString("channels%1.wav").arg(channels);
    const QString problem = mediakit::make(mediakit::soundFile(name, track, seconds), folder.path());
    if (!problem.isEmpty())
        throw Failure(problem);
    return folder.filePath(name);
}

Outcome measure(const QVector<int> &channelCounts, int rounds)
{
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString reader = programs.filePath("LTCReader.exe");
    const QString opener = programs.filePath("soundfile-opener");
    const QTemporaryDir folder;
    Table table{"LTCReader: time from start to exit, medians",
                {"channels", "ms", "ms of a program that only opens the file", "ms more"},
                {}};
    Outcome outcome;
    for (const int channels : channelCounts) {
        tellProgress(QString("%1 channels").arg(channels));
        const QString file = makeFile(channels, folder);
        QVector<double> readerTimes;
        QVector<double> openerTimes;
        for (int round = 0; round < rounds; ++round) {
            readerTimes += timeOfProcess(reader, {file});
            openerTimes += timeOfProcess(opener, {file});
        }
        const double more = median(readerTimes) - median(openerTimes);
        table.rows += {static_cast<double>(channels), median(readerTimes), median(openerTimes), more};
        if (channels == 1)
            outcome.figures.checks += Check{"one channel: more than opening the file [ms]", more, limit};
    }
    outcome.figures.tables += table;
    Chart chart{"LTCReader, 3 s of sound",
                "channels",
                "ms from start to exit",
                {{"LTCReader", {}}, {"only opened", {}}}};
    for (const QVector<double> &row : std::as_const(table.rows)) {
        chart.series[0].points += QPointF(row.at(0), row.at(1));
        chart.series[1].points += QPointF(row.at(0), row.at(2));
    }
    outcome.charts += chart;
    return outcome;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    BenchmarkProgram program(
        "reader-benchmark",
        "Measures LTCReader from its start to its exit over three seconds of sound with timecode, "
        "compared with a program that only opens the file.");
    program.addOption("channels", "Numbers of channels", "1,2,4,8");
    program.addOption("rounds", "Runs of each program", "200");
    return program.run([&program] { return measure(program.numbers("channels"), program.number("rounds")); });
}

// SPDX-License-Identifier: MIT
#include "bench/support/program.h"
#include "bench/support/usage.h"
#include "testkit/media/mediamaker.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

using namespace bench;

namespace
{

/// A sound file of \a channels channels whose last one carries the timecode, as long as what the import
/// extracts.
QString makeFile(int channels, const QTemporaryDir &folder)
{
    constexpr double frequency = 440.0; // [Hz]
    constexpr double seconds = 3.0;
    mediakit::Track track(channels - 1, mediakit::toneChannel(frequency));
    track += mediakit::timecodeChannel({10, 0, 0, 0}, {});
    const QString name = QString("channels%1.wav").arg(channels);
    const QString problem = mediakit::make(mediakit::soundFile(name, track, seconds), folder.path());
    if (!problem.isEmpty())
        throw Failure(problem);
    return folder.filePath(name);
}

int measure(const QVector<int> &channelCounts, quint64 rounds)
{
    const QDir programs(QCoreApplication::applicationDirPath());
    const QTemporaryDir folder;
    for (const int channels : channelCounts) {
        const QString file = makeFile(channels, folder);
        for (quint64 round = 0; round < rounds; ++round) {
            const double reader = runSilently(programs.filePath("LTCReader.exe"), {file}).time;
            const double opener = runSilently(programs.filePath("soundfile-opener"), {file}).time;
            print("reader",
                  {{"channels", channels}, {"reader_ms", 1e3 * reader}, {"opener_ms", 1e3 * opener}});
        }
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    Program program(
        "reader-benchmark",
        "Measures LTCReader from its start to its exit over three seconds of sound with timecode, compared "
        "with a program that only opens the file.");
    program.addOption("channels", "Numbers of channels", "list", "1,2,4,8");
    program.addOption("rounds", "Runs of each program", "number", "200");
    return program.run([&program] {
        const QVector<int> channels = program.numbers("channels");
        const quint64 rounds = program.number("rounds");
        program.printRun();
        return measure(channels, rounds);
    });
}

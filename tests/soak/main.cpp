// SPDX-License-Identifier: MIT

// Does the same work again and again in one process, and checks that memory, open files and processes stay
// level from the second round on; the first fills what is kept on purpose.

#include "app/records/recordtypes.h"
#include "tests/soak/soak.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>

#include <cstdio>

namespace
{

constexpr qint64 levelMemory = qint64{8} * 1024; // [KiB] that the heap may waver by between rounds
constexpr int levelFiles = 4;                    // sockets that a library keeps for a moment

void report(int round, const Holdings &now, qint64 milliseconds)
{
    std::printf("soak: round %d: %lld s, %lld KiB, %d open files, %d processes\n", round, milliseconds / 1000,
                now.memory, now.openFiles, now.children);
    std::fflush(stdout);
}

bool isLevel(const Holdings &second, const Holdings &last)
{
    return last.memory <= second.memory + levelMemory && last.openFiles <= second.openFiles + levelFiles &&
           last.children == 0;
}

} // namespace

int main(int argc, char *argv[])
{
    registerRecordTypes();
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{"rounds", "How often the work is done.", "count", "5"},
                       {"files", "Files of one round.", "count", "200"},
                       {"named", "Beginning of the files' names.", "name", "take"}});
    parser.addHelpOption();
    parser.process(application);

    Soak soak(parser.value("files").toInt(), parser.value("named"));
    QElapsedTimer timer;
    timer.start();
    Holdings second;
    Holdings last;
    for (int round = 1; round <= parser.value("rounds").toInt(); ++round) {
        const QString failure = soak.round();
        if (!failure.isEmpty()) {
            std::printf("soak: round %d: %s\n", round, qPrintable(failure));
            return 1;
        }
        last = Soak::holdings();
        report(round, last, timer.elapsed());
        if (round == 2)
            second = last;
    }
    if (second.memory > 0 && !isLevel(second, last)) {
        std::printf("soak: not level: what was held after the second round has grown\n");
        return 1;
    }
    std::printf("soak: all is level\n");
    return 0;
}

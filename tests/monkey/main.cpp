// SPDX-License-Identifier: MIT

// Plays random sequences in the real window and stops at the first one after which something is wrong; or
// soaks: does the same work again and again.

#include "app/records/recordtypes.h"
#include "testkit/fixtures/ownprocesses.h"
#include "tests/monkey/monkey.h"
#include "tests/monkey/soak.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMutex>

#include <cstdio>
#include <utility>

namespace
{

constexpr int warmUp = 5;     // sequences until all libraries are loaded
constexpr int strayFiles = 8; // open for a moment: sockets of the update check
constexpr int sequencesAReport = 250;
constexpr qint64 levelMemory = qint64{8} * 1024; // [KiB] that the heap may waver by between rounds
constexpr int levelFiles = 4;                    // sockets that a library keeps for a moment

/// What Qt warned of, in any thread.
class Warnings
{
public:
    void add(const QString &text)
    {
        const QMutexLocker lock(&mutex);
        texts += text;
    }
    QStringList take()
    {
        const QMutexLocker lock(&mutex);
        return std::exchange(texts, {});
    }

private:
    QMutex mutex;
    QStringList texts;
};

Warnings &warnings()
{
    static Warnings all;
    return all;
}

void note(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    // The platform without a screen cannot fix the size of a window, and says so of each.
    if (type != QtDebugMsg && type != QtInfoMsg && !text.contains("propagateSizeHints"))
        warnings().add("Qt warns: " + text);
}

void report(int count, const char *what, const QElapsedTimer &timer)
{
    std::printf("monkey: %d %s in %lld s, %d open files, %lld KiB, %d processes\n", count, what,
                timer.elapsed() / 1000, ownprocesses::openFiles(), ownprocesses::residentMemory(),
                static_cast<int>(ownprocesses::children().size()));
    std::fflush(stdout);
}

/// Plays the sequence of \a seed; whether all was well.
bool play(std::uint64_t seed)
{
    Monkey monkey(seed);
    const QStringList failures = monkey.play() + warnings().take();
    if (failures.isEmpty())
        return true;
    std::printf("monkey: seed %llu\n", static_cast<unsigned long long>(seed));
    for (const QString &action : monkey.actions())
        std::printf("    %s\n", qPrintable(action));
    for (const QString &failure : failures)
        std::printf("  broken: %s\n", qPrintable(failure));
    return false;
}

/// Plays \a count sequences from \a first on; whether all was well and no files stay open.
bool playMany(quint64 first, int count)
{
    QElapsedTimer timer;
    timer.start();
    int openFiles = 0;
    for (int i = 0; i < count; ++i) {
        if (!play(first + static_cast<quint64>(i)))
            return false;
        if (i == warmUp)
            openFiles = ownprocesses::openFiles();
        if (i % sequencesAReport == sequencesAReport - 1)
            report(i + 1, "sequences", timer);
    }
    report(count, "sequences", timer);
    return openFiles == 0 || ownprocesses::openFiles() <= openFiles + strayFiles;
}

/// Does the same work \a rounds times; whether all was well and what the process holds stays level from the
/// second round on. The first fills what is kept on purpose.
bool soak(int rounds, int files, const QString &name)
{
    Soak work(files, name);
    QElapsedTimer timer;
    timer.start();
    qint64 memory = 0;
    int openFiles = 0;
    for (int round = 1; round <= rounds; ++round) {
        const QStringList failures = QStringList{work.round()} + warnings().take();
        report(round, "rounds", timer);
        if (failures != QStringList{QString()} || !ownprocesses::children().isEmpty()) {
            std::printf("  broken: %s\n", qPrintable(failures.join("\n  broken: ")));
            return false;
        }
        if (round == 2) {
            memory = ownprocesses::residentMemory();
            openFiles = ownprocesses::openFiles();
        }
    }
    return rounds < 2 || (ownprocesses::residentMemory() <= memory + levelMemory &&
                          ownprocesses::openFiles() <= openFiles + levelFiles);
}

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler(note);
    registerRecordTypes();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QApplication::arguments();
    const quint64 first = arguments.value(1).toULongLong();
    const int count = arguments.value(2).toInt();
    const int files = arguments.value(3).toInt();
    const bool soaks = arguments.size() == 5 && arguments.at(1) == "soak" && files > 0;
    if (count < 1 || (!soaks && (arguments.size() != 3 || first < 1))) {
        std::fputs("usage: ostrel_monkey FIRST_SEED COUNT | soak ROUNDS FILES NAME\n", stderr);
        return 2;
    }
    const bool isWell = soaks ? soak(count, files, arguments.at(4)) : playMany(first, count);
    std::puts(isWell ? "monkey: all well" : "monkey: something is wrong, or more is held than at first");
    return isWell ? 0 : 1;
}

// SPDX-License-Identifier: MIT

// Plays random sequences in the real window and stops at the first one after which something is wrong.

#include "app/records/recordtypes.h"
#include "testkit/fixtures/ownprocesses.h"
#include "tests/monkey/monkey.h"

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

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler(note);
    registerRecordTypes();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QApplication::arguments();
    bool isNumber[2] = {false, false};
    const quint64 first = arguments.value(1).toULongLong(&isNumber[0]);
    const int count = arguments.value(2).toInt(&isNumber[1]);
    if (arguments.size() != 3 || !isNumber[0] || !isNumber[1] || count < 1) {
        std::fprintf(stderr, "usage: ostrel_monkey FIRST_SEED COUNT\n");
        return 2;
    }

    QElapsedTimer timer;
    timer.start();
    int openFiles = 0;
    for (int i = 0; i < count; ++i) {
        if (!play(first + static_cast<quint64>(i)))
            return 1;
        if (i == warmUp)
            openFiles = ownprocesses::openFiles();
        if (i % sequencesAReport == sequencesAReport - 1) {
            std::printf("monkey: %d sequences in %lld s, %d open files, %lld KiB\n", i + 1,
                        timer.elapsed() / 1000, ownprocesses::openFiles(), ownprocesses::residentMemory());
            std::fflush(stdout);
        }
    }
    if (openFiles > 0 && ownprocesses::openFiles() > openFiles + strayFiles) {
        std::printf("monkey: %d open files have become %d\n", openFiles, ownprocesses::openFiles());
        return 1;
    }
    std::printf("monkey: %d sequences from seed %llu in %lld s, all well\n", count,
                static_cast<unsigned long long>(first), timer.elapsed() / 1000);
    return 0;
}

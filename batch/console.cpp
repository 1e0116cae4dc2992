// SPDX-License-Identifier: MIT
#include "batch/console.h"

#include "batch/progresstext.h"

#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

bool isErrorTerminal()
{
#ifdef Q_OS_UNIX
    return isatty(STDERR_FILENO) == 1;
#else
    return false;
#endif
}

} // namespace

Console::Console(bool quiet) : quiet(quiet), isTerminal(isErrorTerminal())
{
}

void Console::beginTable(const QVector<PrintedTable::Column> &columns)
{
    if (quiet)
        return;
    table = PrintedTable(columns);
    clearBar();
    print(stdout, table.header());
}

void Console::showRow(const QStringList &cells)
{
    if (quiet)
        return;
    clearBar();
    print(stdout, table.line(cells));
}

void Console::showProgress(const QString &what, int done, int total)
{
    if (quiet)
        return;
    if (what != workShown) {
        workShown = what;
        doneShown = 0;
        sinceBegin.start();
    }
    if (isTerminal) {
        clearBar();
        constexpr double millisecondsASecond = 1000.0;
        const double elapsed = static_cast<double>(sinceBegin.elapsed()) / millisecondsASecond;
        print(stderr, progresstext::bar(what, done, total, elapsed));
        isBarShown = true;
    } else if (progresstext::isLineDue(doneShown, done, total)) {
        print(stderr, progresstext::line(what, done, total));
    }
    doneShown = done;
}

void Console::showProblem(const QString &text)
{
    clearBar();
    print(stderr, "ostrel-batch: " + text + '\n');
}

void Console::clearBar()
{
    if (isBarShown)
        print(stderr, "\r\033[K"); // to the end of the line
    isBarShown = false;
}

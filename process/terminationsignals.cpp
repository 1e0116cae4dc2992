// SPDX-License-Identifier: MIT
#include "process/terminationsignals.h"

#include <QSocketNotifier>

#ifdef Q_OS_UNIX

#include <array>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

std::array<int, 2> wakeUpSockets{-1, -1}; // written by the signal handler, read by the event loop

// A signal handler may do next to nothing; one byte wakes the event loop up.
void wakeUp(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = write(wakeUpSockets[0], &byte, sizeof byte);
}

void handle(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction before = {};
        sigaction(number, nullptr, &before);
        if (number != SIGHUP || before.sa_handler != SIG_IGN) // "nohup" starts programs that stay
            sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent)
{
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, wakeUpSockets.data()) != 0)
        return; // the signals keep their default action
    notifier = new QSocketNotifier(wakeUpSockets[1], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &TerminationSignals::onWakeUp);
    handle(wakeUp);
}

TerminationSignals::~TerminationSignals()
{
    if (!notifier)
        return;
    handle(SIG_DFL);
    delete notifier;
    for (const int socket : wakeUpSockets)
        close(socket);
}

void TerminationSignals::onWakeUp()
{
    char byte = 0;
    if (read(wakeUpSockets[1], &byte, sizeof byte) == sizeof byte)
        emit terminationRequested();
}

#else

TerminationSignals::TerminationSignals(QObject *parent) : QObject(parent)
{
}

TerminationSignals::~TerminationSignals() = default;

void TerminationSignals::onWakeUp()
{
}

#endif

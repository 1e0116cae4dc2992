// SPDX-License-Identifier: MIT
// POSIX: starts and replaces processes.
#include "tooladapter/posix/childprocess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tooladapter
{
namespace
{

constexpr int notStartedCode = 127; // as the shell has it

[[noreturn]] void fail(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// Starts \a command, its standard output on \a output where that is not -1.
pid_t start(const Command &command, int output)
{
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0)
        fail("no process could be started");
    if (child > 0)
        return child;

    // The parent may have died before the request took hold; then nothing would end this process any more.
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent)
        _exit(notStartedCode);
    if (output >= 0)
        dup2(output, STDOUT_FILENO);
    _exit(become(command));
}

int exitCodeOf(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            fail("the end of a process is not known");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

int become(const Command &command)
{
    std::vector<char *> words{const_cast<char *>(command.program.c_str())};
    for (const std::string &argument : command.arguments)
        words.push_back(const_cast<char *>(argument.c_str()));
    words.push_back(nullptr);
    execv(command.program.c_str(), words.data());
    std::cerr << command.program << ": cannot be started: " << std::strerror(errno) << std::endl;
    return notStartedCode;
}

int run(const Command &command)
{
    return exitCodeOf(start(command, -1));
}

int capture(const Command &command, std::string &output)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("no pipe could be made");
    const pid_t child = start(command, ends[1]);
    close(ends[1]);
    std::array<char, 4096> block{};
    ssize_t count = 0;
    while ((count = read(ends[0], block.data(), block.size())) != 0) {
        if (count > 0)
            output.append(block.data(), static_cast<std::size_t>(count));
        else if (errno != EINTR)
            break;
    }
    close(ends[0]);
    return exitCodeOf(child);
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#include "bench/support/silentprocess.h"

#include "bench/support/benchmarkprogram.h"

#include <QFile>

#include <deque>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace bench
{

namespace
{

/// Texts as the system's calls take them.
class TextVector
{
public:
    void add(const QString &text) { texts.push_back(QFile::encodeName(text)); }

    char *const *data()
    {
        pointers.clear();
        for (QByteArray &text : texts)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
        return pointers.data();
    }

private:
    std::deque<QByteArray> texts;
    std::vector<char *> pointers;
};

/// Makes every standard stream of a child lead to nowhere.
class Silence
{
public:
    Silence()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    }
    ~Silence() { posix_spawn_file_actions_destroy(&actions); }
    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;

    posix_spawn_file_actions_t actions{};
};

} // namespace

pid_t startSilently(const QString &program, const QStringList &arguments, const QStringList &environment)
{
    const Silence silence;
    TextVector argumentTexts;
    argumentTexts.add(program);
    for (const QString &argument : arguments)
        argumentTexts.add(argument);
    TextVector variables;
    for (const QString &variable : environment)
        variables.add(variable);
    pid_t pid = 0;
    const int error = posix_spawn(&pid, QFile::encodeName(program).constData(), &silence.actions, nullptr,
                                  argumentTexts.data(), environment.isEmpty() ? environ : variables.data());
    if (error != 0)
        throw Failure(program + " cannot be started");
    return pid;
}

bool hasEndedWith(int exitCode, int status)
{
    return WIFEXITED(status) && WEXITSTATUS(status) == exitCode;
}

} // namespace bench

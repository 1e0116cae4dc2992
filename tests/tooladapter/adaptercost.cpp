// SPDX-License-Identifier: MIT
// Measures what the tool adapter adds to a run of a tool: the same argument list is given to a stand-in that
// does nothing, directly and through the adapter, by turns. The file that an export is to leave exists
// already, so the adapter checks it as after a real export; that run of the real probe tool is not counted.
// The limit is one of processor time, which a busy machine does not stretch; the time that passes is that on
// a quiet one.
#include "tooladapter/rules/exportrules.h"
#include "tooladapter/rules/source.h"
#include "tooladapter/verify/writtenfile.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVector>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int rounds = 200;
constexpr double allowed = 5.0; // [ms]

/// A job of the application: what it is called, the tool that does it and the list that it is asked with.
struct Job {
    const char *name;
    const char *tool;
    QStringList arguments;
    QStringList check; ///< of the written file by the real probe tool; empty = none
};

/// What one run took [ms].
struct Cost {
    double processor = 0.0; ///< of the process and of those that it waited for
    double passed = 0.0;

    void operator+=(const Cost &other)
    {
        processor += other.processor;
        passed += other.passed;
    }
};

double milliseconds(const timeval &time)
{
    return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
}

/// Runs \a program to its end. Throws std::runtime_error where it fails.
Cost costOf(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment)
{
    QVector<QByteArray> words{QFile::encodeName(program)};
    for (const QString &argument : arguments)
        words += QFile::encodeName(argument);
    QVector<QByteArray> variables;
    const QStringList settings = environment.toStringList();
    for (const QString &setting : settings)
        variables += QFile::encodeName(setting);
    const auto pointers = [](QVector<QByteArray> &texts) {
        std::vector<char *> list;
        for (QByteArray &text : texts)
            list.push_back(text.data());
        list.push_back(nullptr);
        return list;
    };

    posix_spawn_file_actions_t silence;
    posix_spawn_file_actions_init(&silence);
    posix_spawn_file_actions_addopen(&silence, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    QElapsedTimer timer;
    timer.start();
    pid_t process = 0;
    int status = 0;
    rusage usage = {};
    if (posix_spawn(&process, words.first().constData(), &silence, nullptr, pointers(words).data(),
                    pointers(variables).data()) != 0 ||
        wait4(process, &status, 0, &usage) != process || status != 0)
        throw std::runtime_error(program.toStdString() + " failed");
    posix_spawn_file_actions_destroy(&silence);
    return {milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime), double(timer.nsecsElapsed()) / 1e6};
}

Cost median(QVector<Cost> costs)
{
    const auto middle = costs.begin() + costs.size() / 2;
    Cost cost;
    std::nth_element(costs.begin(), middle, costs.end(),
                     [](const Cost &a, const Cost &b) { return a.processor < b.processor; });
    cost.processor = middle->processor;
    std::nth_element(costs.begin(), middle, costs.end(),
                     [](const Cost &a, const Cost &b) { return a.passed < b.passed; });
    cost.passed = middle->passed;
    return cost;
}

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

/// Makes a movie at \a path and returns what the application would say about it.
QString makeMovie(const QString &path)
{
    outputOf("ffmpeg", {"-v",        "error",
                        "-f",        "lavfi",
                        "-i",        "testsrc2=size=320x180:rate=50:duration=10",
                        "-f",        "lavfi",
                        "-i",        "anullsrc=duration=10:sample_rate=48000",
                        "-map",      "0",
                        "-map",      "1",
                        "-map",      "1",
                        "-t",        "10",
                        "-c:v",      "mpeg2video",
                        "-c:a",      "pcm_s24le",
                        "-timecode", "10:11:12:26",
                        path});
    QStringList arguments;
    for (const std::string &argument : tooladapter::probeArguments(path.toStdString()))
        arguments += QString::fromStdString(argument);
    return QString::fromUtf8(outputOf("ffprobe", arguments));
}

/// Measures \a job with a stand-in for its tool in \a folder and returns what the adapter adds to it.
Cost addedTo(const Job &job, const QTemporaryDir &folder, QProcessEnvironment environment)
{
    const QString adapter = QStandardPaths::findExecutable(QString(job.tool) + ".exe");
    const QString probe = QStandardPaths::findExecutable("ffprobe");
    const QString standIns = folder.filePath(QString("only-") + job.tool);
    const QString standIn = standIns + '/' + job.tool;
    QDir().mkpath(standIns);
    QFile::link(QStandardPaths::findExecutable("true"), standIn);
    environment.insert("PATH", standIns + ':' + environment.value("PATH"));

    QVector<Cost> alone;
    QVector<Cost> adapted;
    for (int round = 0; round < rounds; ++round) {
        alone += costOf(standIn, job.arguments, environment);
        if (!job.check.isEmpty())
            alone.last() += costOf(probe, job.check, environment);
        adapted += costOf(adapter, job.arguments, environment);
    }
    const Cost without = median(alone);
    const Cost with = median(adapted);
    return {with.processor - without.processor, with.passed - without.passed};
}

/// The arguments of the run of the probe tool that checks \a movie, exported as a whole.
QStringList checkOf(const QString &movie, const QString &description)
{
    tooladapter::Export job;
    job.path = movie.toStdString();
    job.pictureStream = 0;
    QStringList arguments;
    for (const std::string &argument :
         tooladapter::checkArguments(job, tooladapter::parseProbe(description.toStdString())))
        arguments += QString::fromStdString(argument);
    return arguments;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTextStream report(stdout);
    const QTemporaryDir folder;
    const QString movie = folder.filePath("clip.MOV");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString description = makeMovie(movie);
    environment.insert("OSTREL_SOURCE", description);

    const QVector<Job> jobs{
        {"probe",
         "ffprobe",
         {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", movie},
         {}},
        {"extraction",
         "ffmpeg",
         {"-y", "-guess_layout_max", "0", "-ss", "0", "-i", movie, "-t", "3", "-map", "0:1",
          folder.filePath("1.wav")},
         {}},
        {"export",
         "ffmpeg",
         {"-y", "-i", movie, "-acodec", "pcm_s24le", "-vcodec", "copy", "-timecode", "10:11:12:13", "-r",
          "25", movie},
         checkOf(movie, description)},
    };
    bool isCheap = true;
    try {
        for (const Job &job : jobs) {
            const Cost added = addedTo(job, folder, environment);
            isCheap = isCheap && added.processor <= allowed;
            report << QString("%1: the adapter adds %2 ms of processor time (at most %3), %4 ms pass\n")
                          .arg(job.name)
                          .arg(added.processor, 0, 'f', 2)
                          .arg(allowed)
                          .arg(added.passed, 0, 'f', 2);
        }
    } catch (const std::exception &problem) {
        report << "adapter-cost: " << problem.what() << '\n';
        return 2;
    }
    return isCheap ? 0 : 1;
}

// SPDX-License-Identifier: MIT
// Measures what the tool adapter adds to a run of a tool: the same argument list is given to a stand-in that
// does nothing, directly and through the adapter, by turns. The file that an export is to leave lies there
// already, so that the adapter looks at it as after a real export.
#include "tooladapter/source.h"

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

#include <spawn.h>
#include <sys/wait.h>

namespace
{

constexpr int rounds = 200;
constexpr double allowed = 5.0; // [ms]

/// A job of the application: what it is called, the tool that does it and the list that it is asked with.
struct Job {
    const char *name;
    const char *tool;
    QStringList arguments;
};

/// Runs \a program to its end and returns the time that took [ms], below 0 where it fails.
double timeOf(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment)
{
    QVector<QByteArray> words{QFile::encodeName(program)};
    for (const QString &argument : arguments)
        words += QFile::encodeName(argument);
    QVector<QByteArray> variables;
    const QStringList settings = environment.toStringList();
    for (const QString &setting : settings)
        variables += QFile::encodeName(setting);
    const auto pointers = [](QVector<QByteArray> &texts) {
        QVector<char *> list;
        for (QByteArray &text : texts)
            list += text.data();
        return list << nullptr;
    };

    QElapsedTimer timer;
    timer.start();
    pid_t process = 0;
    int status = 0;
    if (posix_spawn(&process, words.first().constData(), nullptr, nullptr, pointers(words).data(),
                    pointers(variables).data()) != 0)
        return -1.0;
    waitpid(process, &status, 0);
    return status == 0 ? double(timer.nsecsElapsed()) / 1e6 : -1.0;
}

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

/// Makes a movie at \a path and returns what the application would tell of it.
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

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTextStream report(stdout);
    const QTemporaryDir folder;
    const QString movie = folder.filePath("clip.MOV");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("OSTREL_SOURCE", makeMovie(movie));
    for (const char *tool : {"ffmpeg", "ffprobe"})
        QFile::link(QStandardPaths::findExecutable("true"), folder.filePath(tool));
    environment.insert("PATH", folder.path() + ':' + environment.value("PATH"));

    const QVector<Job> jobs{
        {"probe",
         "ffprobe",
         {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", movie}},
        {"extraction",
         "ffmpeg",
         {"-y", "-guess_layout_max", "0", "-ss", "0", "-i", movie, "-t", "3", "-map", "0:1",
          folder.filePath("1.wav")}},
        {"export",
         "ffmpeg",
         {"-y", "-i", movie, "-acodec", "pcm_s24le", "-vcodec", "copy", "-timecode", "10:11:12:13", "-r",
          "25", movie}},
    };
    bool isCheap = true;
    for (const Job &job : jobs) {
        const QString adapter = QStandardPaths::findExecutable(QString(job.tool) + ".exe");
        QVector<double> alone;
        QVector<double> adapted;
        for (int round = 0; round < rounds; ++round) {
            alone += timeOf(folder.filePath(job.tool), job.arguments, environment);
            adapted += timeOf(adapter, job.arguments, environment);
        }
        if (*std::min_element(alone.begin(), alone.end()) < 0.0 ||
            *std::min_element(adapted.begin(), adapted.end()) < 0.0) {
            report << "adapter-cost: the " << job.name << " failed" << Qt::endl;
            return 2;
        }
        const double added = median(adapted) - median(alone);
        isCheap = isCheap && added <= allowed;
        report << QString("%1: %2 ms alone, %3 ms through the adapter, which adds %4 ms (at most %5)")
                      .arg(job.name)
                      .arg(median(alone), 0, 'f', 2)
                      .arg(median(adapted), 0, 'f', 2)
                      .arg(added, 0, 'f', 2)
                      .arg(allowed)
               << Qt::endl;
    }
    return isCheap ? 0 : 1;
}

// SPDX-License-Identifier: MIT
#include "bench/realtools/floor.h"

#include "bench/support/program.h"
#include "bench/support/usage.h"
#include "control/jobqueues.h"
#include "control/probedrecord.h"
#include "ffmpeg/exportarguments.h"
#include "ffmpeg/exporthints.h"
#include "ffmpeg/toolarguments.h"
#include "ltc/readerarguments.h"
#include "process/toolresolver.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>

#include <deque>
#include <exception>
#include <map>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace bench
{

namespace
{

void launch(const std::vector<Job> &jobs)
{
    constexpr int stepBack = 10; // as the controller's tools
    const auto thread = static_cast<id_t>(gettid());
    setpriority(PRIO_PROCESS, thread, getpriority(PRIO_PROCESS, thread) + stepBack); // its children's, too

    std::deque<const Job *> ready;
    for (const Job &job : jobs)
        ready.push_back(&job);
    std::map<pid_t, const Job *> running;
    while (!ready.empty() || !running.empty()) {
        while (!ready.empty() && running.size() < JobQueues::maximumRunning) {
            const Job *job = ready.front();
            running.emplace(startSilently(job->program, job->arguments, job->environment), job);
            ready.pop_front();
        }
        int status = 0;
        const auto ended = running.find(waitpid(-1, &status, 0));
        if (ended == running.end())
            continue;
        const Job *job = ended->second;
        if (!hasEndedWith(0, status) && !hasEndedWith(job->otherGoodExitCode, status))
            throw Failure(job->program + ' ' + job->arguments.join(' ') + " has failed");
        for (const Job &follower : job->followers)
            ready.push_back(&follower);
        running.erase(ended);
    }
}

FileData probedFile(const QString &path)
{
    QProcess probe;
    probe.start(toolresolver::resolve("ffprobe.exe"), toolarguments::probe(path));
    if (!probe.waitForFinished() || probe.exitCode() != 0)
        throw Failure(path + " cannot be probed");
    return probedRecord(QJsonDocument::fromJson(probe.readAllStandardOutput()).object());
}

Job importJob(const FileData &file, const QString &folder)
{
    constexpr int noTimecode = 205; // the reader's exit code
    Job probe{toolresolver::resolve("ffprobe.exe"), toolarguments::probe(file.absoluteFilePath)};
    Job extraction{toolresolver::resolve("ffmpeg.exe"), toolarguments::audioExtraction(file, folder)};
    const QVector<int> streams = toolarguments::audioStreams(file);
    for (const int stream : streams) {
        const QString path = toolarguments::extractedPath(file, folder, stream);
        extraction.followers.push_back({toolresolver::resolve("LTCReader.exe"),
                                        readerarguments::automatic(path, file.isGoPro),
                                        {},
                                        noTimecode});
    }
    probe.followers.push_back(extraction);
    return probe;
}

} // namespace

void runJobs(const std::vector<Job> &jobs)
{
    std::exception_ptr problem;
    std::thread thread([&jobs, &problem] {
        try {
            launch(jobs);
        } catch (const Failure &) {
            problem = std::current_exception();
        }
    });
    thread.join();
    if (problem)
        std::rethrow_exception(problem);
}

std::vector<Job> importJobs(const QStringList &paths, int kinds, const QString &folder)
{
    std::vector<Job> jobs;
    QVector<FileData> files;
    for (int row = 0; row < paths.size(); ++row) {
        files += row < kinds ? probedFile(paths.at(row)) : files.at(row - kinds);
        FileData &file = files.last();
        const QFileInfo info(paths.at(row));
        file.fileName = info.fileName();
        file.absoluteFilePath = info.absoluteFilePath();
        file.rowNumber = row;
        const QString extracted = QDir(folder).filePath(info.baseName());
        QDir().mkpath(extracted);
        jobs.push_back(importJob(file, extracted));
    }
    return jobs;
}

std::vector<Job> exportJobs(const QVector<FileData> &files, ExportOptions options)
{
    options.progressSteps = 15;
    const auto noneIsTaken = [](const QString &) { return false; };
    std::vector<Job> jobs;
    for (const FileData &file : files) {
        const qint64 size = QFileInfo(file.absoluteFilePath).size();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        exporthints::insertInto(environment, file, options);
        jobs.push_back({toolresolver::resolve("ffmpeg.exe"),
                        exportarguments::build(file, options, size, noneIsTaken).arguments,
                        environment.toStringList()});
    }
    return jobs;
}

} // namespace bench

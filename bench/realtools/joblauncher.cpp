// SPDX-License-Identifier: MIT
#include "bench/realtools/joblauncher.h"

#include "bench/support/benchmarkprogram.h"
#include "bench/support/silentprocess.h"
#include "control/jobqueues.h"

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

} // namespace bench

// SPDX-License-Identifier: MIT
#include "bench/ltc/oddresult.h"
#include "bench/support/program.h"
#include "testkit/recordings/recordings.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <exception>
#include <iomanip>
#include <iostream>
#include <mutex>
#include <thread>

using namespace ltcbench;
using bench::Program;

namespace
{

constexpr const char *description =
    R"(Has LTCReader's decoder read odd recordings and judges the answers: labels that jump, stand still or cannot be,
odd speeds, two timecodes, under disturbances of three grades each and none, of 0.1 to 3 seconds.
Prints a line of JSON for each recording, in the order in which they are done; bench/figures.py counts them.

Exit code: 0; 1 when an answer was wrong or broken; 2 when something was wrong with the options or a file.)";

int printList()
{
    for (const Behaviour &behaviour : allBehaviours())
        std::cout << behaviour.name << ": weight " << behaviour.weight << "; right is " << behaviour.policy
                  << "\n";
    for (const Disturbance &disturbance : allDisturbances()) {
        std::cout << std::noshowpos << disturbance.name << ": weight " << disturbance.weight
                  << ", with --edge " << disturbance.edgeWeight;
        if (disturbance.apply) {
            std::cout << "; at the edge " << disturbance.edge[0] << ", " << disturbance.edge[1] << ", "
                      << disturbance.edge[2] << " (0.2, 1, 3 s), easy " << std::showpos << disturbance.easyBy
                      << ", beyond " << disturbance.beyondBy << ", +-" << std::noshowpos << disturbance.step
                      << " " << disturbance.unit;
        }
        std::cout << "\n";
    }
    for (const Length &length : allLengths())
        std::cout << length.seconds << " s: weight " << length.weight << ", with --edge " << length.edgeWeight
                  << "\n";
    return 0;
}

std::vector<Draw> draws(const Program &program)
{
    const bool negatives = program.isSet("negatives");
    const Kind kind = negatives ? Kind::Programme : program.isSet("edge") ? Kind::Edge : Kind::Odd;
    const auto count = program.number(negatives ? "negatives" : "files");
    const auto seed = program.number("seed", 0);
    const std::string only = program.text("only").toStdString();
    std::vector<Draw> result;
    constexpr std::uint64_t untilFirst = 10'000; // more than the rarest thing takes
    for (std::uint64_t index = 0; result.size() < count; ++index) {
        if (result.empty() && index == untilFirst)
            throw bench::Failure("nothing is called \"" + program.text("only") +
                                 "\"; --list prints all names");
        const Draw draw = drawOf(kind, seed, index);
        if (draw.behaviour->name.find(only) != std::string::npos ||
            draw.disturbance->name.find(only) != std::string::npos)
            result.push_back(draw);
    }
    return result;
}

int measureAll(const Program &program)
{
    const std::vector<Draw> all = draws(program);
    const quint64 jobs =
        program.isSet("jobs") ? program.number("jobs") : std::max(1U, std::thread::hardware_concurrency());
    program.printRun();
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> faulty = false;
    std::mutex mutex; // of the failure
    std::exception_ptr failure;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < all.size(); i = next++) {
                const OddResult result = measure(all[i]);
                bench::print("odd", toJson(result));
                if (result.isFault()) {
                    faulty = true;
                    bench::report(QString::fromStdString(textOfFault(result)));
                }
                constexpr std::size_t step = 1000; // between two lines on progress
                if (i % step == step - 1)
                    bench::report(QString("%1 of %2").arg(i + 1).arg(all.size()));
            }
        } catch (...) {
            const std::lock_guard lock(mutex);
            failure = std::current_exception();
            next = all.size();
        }
    };
    std::vector<std::thread> threads;
    for (quint64 job = 0; job < jobs; ++job)
        threads.emplace_back(work);
    for (std::thread &thread : threads)
        thread.join();
    if (failure)
        std::rethrow_exception(failure);
    return faulty ? 1 : 0;
}

int readCase(const Program &program)
{
    const Draw draw = drawNamed(program.text("case").toStdString());
    const OddCase odd = caseOf(draw);
    if (program.isSet("save"))
        save(odd.recording, program.text("save").toStdString());
    const OddResult result = measure(draw);
    std::cout << draw.behaviour->name << ", " << draw.disturbance->name << " " << draw.value << " "
              << draw.disturbance->unit << ", " << draw.seconds << " s, " << nameOf(draw.rate) << "\n"
              << "right: " << textOf(odd.right) << "\n"
              << nameOf(result.verdict) << " " << result.answered << " " << std::setprecision(9)
              << result.confidence << " " << result.reason << "\n";
    return result.isFault() ? 1 : 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Program program("ltc-odd-benchmark", description);
    program.addOption("files", "Recordings", "number", "1000");
    program.addSwitch(
        "edge", "Instead of odd recordings: ordinary timecode near the edge of what is read, 0.2, 1 and 3 s");
    program.addOption("negatives", "Instead of odd recordings: that many sounds without timecode", "number");
    program.addOption("seed", "Start of all random numbers", "number", "1");
    program.addOption("only", "Only recordings whose behaviour or disturbance contains it", "text");
    program.addOption("jobs", "Threads (all processors)", "number");
    program.addOption(
        "case", "Reads one recording by the name that a wrong answer is reported with: SEED/INDEX", "name");
    program.addOption("save", "With --case: writes that recording as a WAV file", "file");
    program.addSwitch("list", "Prints what is drawn, how often, and which answers are right");
    return program.run([&program] {
        if (program.isSet("list"))
            return printList();
        return program.isSet("case") ? readCase(program) : measureAll(program);
    });
}

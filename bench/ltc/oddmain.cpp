// SPDX-License-Identifier: MIT
#include "bench/ltc/figures.h"
#include "bench/ltc/oddreport.h"
#include "testkit/signals/wavfile.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <fstream>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <thread>

using namespace ltcbench;

namespace
{

constexpr const char *help = R"(Usage: ltc-odd-benchmark [options]
Has LTCReader's decoder read odd recordings and counts the answers: labels that jump, stand still or cannot be, odd
speeds, two timecodes, under disturbances of three grades each and none, of 0.1 to 3 seconds.

  --files N        recordings (1000)
  --edge           instead of odd recordings: ordinary timecode near the edge of what is read, 0.2, 1 and 3 s
  --negatives N    instead of odd recordings: N sounds without timecode
  --seed N         start of all random numbers (1)
  --only TEXT      only recordings whose behaviour or disturbance contains TEXT
  --jobs N         threads (all processors)
  --csv FILE       writes a row for each recording
  --case NAME      reads one recording by the name that a wrong answer is reported with: SEED/INDEX
  --save FILE      with --case: writes that recording as a WAV file
  --list           prints what is drawn, how often, and which answers are right
  --help           prints this text

Exit code: 0; 1 when an answer was wrong or broken; 2 when something was wrong with the options or a file.
)";

struct Options {
    Kind kind = Kind::Odd;
    std::uint64_t files = 1000;
    std::uint64_t seed = 1;
    std::string only;
    unsigned jobs = std::max(1U, std::thread::hardware_concurrency());
    std::string csv;
    std::string caseName;
    std::string save;
    bool list = false;
    bool help = false;
};

Options parse(const std::vector<std::string> &arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &name = arguments[i];
        const auto value = [&]() -> const std::string & {
            if (i + 1 == arguments.size())
                throw std::invalid_argument(name + " needs a value");
            return arguments[++i];
        };
        if (name == "--files")
            options.files = numberFrom<std::uint64_t>(value());
        else if (name == "--edge")
            options.kind = Kind::Edge;
        else if (name == "--negatives") {
            options.kind = Kind::Programme;
            options.files = numberFrom<std::uint64_t>(value());
        } else if (name == "--seed")
            options.seed = numberFrom<std::uint64_t>(value());
        else if (name == "--only")
            options.only = value();
        else if (name == "--jobs")
            options.jobs = std::max(1U, numberFrom<unsigned>(value()));
        else if (name == "--csv")
            options.csv = value();
        else if (name == "--case")
            options.caseName = value();
        else if (name == "--save")
            options.save = value();
        else if (name == "--list")
            options.list = true;
        else if (name == "--help")
            options.help = true;
        else
            throw std::invalid_argument("unknown option \"" + name + "\"; --help lists all");
    }
    return options;
}

void printList()
{
    for (const Behaviour &behaviour : allBehaviours())
        std::cout << behaviour.name << ": weight " << behaviour.weight << "; right is " << behaviour.policy
                  << "\n";
    for (const Disturbance &disturbance : allDisturbances()) {
        std::cout << disturbance.name << ": weight " << disturbance.weight << ", with --edge "
                  << disturbance.edgeWeight;
        if (disturbance.apply) {
            std::cout << format("; at the edge %g, %g, %g (0.2, 1, 3 s), easy %+g, beyond %+g, +-%g %s",
                                disturbance.edge[0], disturbance.edge[1], disturbance.edge[2],
                                disturbance.easyBy, disturbance.beyondBy, disturbance.step,
                                disturbance.unit.c_str());
        }
        std::cout << "\n";
    }
    for (const Length &length : allLengths())
        std::cout << length.seconds << " s: weight " << length.weight << ", with --edge " << length.edgeWeight
                  << "\n";
}

std::vector<Draw> draws(const Options &options)
{
    const auto isWanted = [&options](const std::string &name) {
        return name.find(options.only) != std::string::npos;
    };
    std::vector<Draw> result;
    constexpr std::uint64_t untilFirst = 10'000; // more than the rarest thing takes
    for (std::uint64_t index = 0; result.size() < options.files; ++index) {
        if (result.empty() && index == untilFirst)
            throw std::invalid_argument("nothing is called \"" + options.only +
                                        "\"; --list prints all names");
        const Draw draw = drawOf(options.kind, options.seed, index);
        if (isWanted(draw.behaviour->name) || isWanted(draw.disturbance->name))
            result.push_back(draw);
    }
    return result;
}

std::vector<OddResult> measureAll(const std::vector<Draw> &draws, unsigned jobs)
{
    using Clock = std::chrono::steady_clock;
    std::vector<OddResult> results(draws.size());
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> done = 0;
    std::mutex mutex; // of what follows
    Clock::time_point reported = Clock::now();
    std::exception_ptr failure;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < draws.size(); i = next++) {
                results[i] = measure(draws[i]);
                ++done;
                const std::lock_guard lock(mutex);
                if (Clock::now() - reported > std::chrono::seconds(10)) {
                    reported = Clock::now();
                    std::cerr << done << " of " << draws.size() << "\n";
                }
            }
        } catch (...) {
            const std::lock_guard lock(mutex);
            failure = std::current_exception();
            next = draws.size();
        }
    };
    std::vector<std::thread> threads;
    for (unsigned job = 0; job < jobs; ++job)
        threads.emplace_back(work);
    for (std::thread &thread : threads)
        thread.join();
    if (failure)
        std::rethrow_exception(failure);
    return results;
}

bool isFault(const OddResult &result)
{
    return result.verdict == OddVerdict::Wrong || result.verdict == OddVerdict::Broken;
}

int runCase(const Options &options)
{
    const Draw draw = drawNamed(options.caseName);
    const OddCase odd = caseOf(draw);
    if (!options.save.empty()) {
        testsignals::WavFile wav;
        wav.sampleRate = odd.recording.sampleRate;
        wav.format = testsignals::SampleFormat::Pcm24;
        wav.channels = odd.recording.channels;
        testsignals::writeWav(options.save, wav);
    }
    const OddResult result = measure(draw);
    std::cout << draw.behaviour->name << ", " << draw.disturbance->name << format(" %.4g ", draw.value)
              << draw.disturbance->unit << ", " << draw.seconds << " s, " << nameOf(draw.rate) << "\n"
              << "right: " << textOf(odd.right) << "\n"
              << nameOf(result.verdict) << " " << result.answered << format(" %.9g ", result.confidence)
              << result.reason << "\n";
    return isFault(result) ? 1 : 0;
}

int run(const Options &options)
{
    const std::vector<OddResult> results = measureAll(draws(options), options.jobs);
    std::cout << faultsOf(results) << "\n" << tablesOf(results) << calibrationOf(results);
    if (!options.csv.empty()) {
        std::ofstream file(options.csv);
        file << csvOf(results);
        file.close();
        if (!file)
            throw std::runtime_error(options.csv + " could not be written");
    }
    return std::any_of(results.begin(), results.end(), isFault) ? 1 : 0;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        const Options options = parse({argv + 1, argv + argc});
        if (options.help) {
            std::cout << help;
            return 0;
        }
        if (options.list) {
            printList();
            return 0;
        }
        return options.caseName.empty() ? run(options) : runCase(options);
    } catch (const std::exception &error) {
        std::cerr << "ltc-odd-benchmark: " << error.what() << "\n";
        return 2;
    }
}

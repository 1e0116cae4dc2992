// SPDX-License-Identifier: MIT
#include "bench/ltc/csv.h"
#include "bench/ltc/figures.h"
#include "bench/ltc/measurement.h"
#include "bench/ltc/plot.h"
#include "bench/ltc/report.h"
#include "testkit/signals/lossycodec.h"
#include "testkit/signals/othersounds.h"
#include "testkit/signals/wavfile.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

using namespace ltcbench;

namespace
{

constexpr const char *help = R"(Usage: ltc-benchmark [options]
Measures how LTCReader's decoder reads timecode under graded impairments, and compares it with libltc's.

  --only TEXT      only curves, sounds or parts whose name or section contains TEXT; may be given several times
                   (parts: "Without timecode", "Cost")
  --files N        recordings for each grade of a curve (20)
  --negatives N    recordings for each kind of sound without timecode (200)
  --seed N         start of all random numbers (1)
  --quick          5 recordings for each grade, 20 for each sound
  --ours           without libltc, for a faster run
  --csv FILE       writes all figures as comma-separated values
  --merge FILE     instead of measuring takes the figures of an earlier run's --csv; may be given several times
  --page FILE      writes the results as a page of documentation (Markdown)
  --plots FOLDER   writes an SVG picture for each section
  --list           prints the names of all curves and sounds
  --case NAME      reads one recording by the name that a wrong answer is reported with
  --save FILE      with --case: writes that recording as a WAV file
  --help           prints this text

Exit code: 0; 1 when LTCReader gave a wrong timecode; 2 when something was wrong with the options or a file.
)";

struct Options {
    Extent extent;
    std::vector<std::string> only;
    std::vector<std::string> merged;
    std::string csv;
    std::string page;
    std::string plots;
    std::string command = "ltc-benchmark"; ///< as it was called
    std::string caseName;
    std::string save;
    bool list = false;
    bool help = false;
};

/// A number of recordings.
int countFrom(const std::string &text)
{
    const auto count = numberFrom<int>(text);
    if (count < 0)
        throw std::invalid_argument("\"" + text + "\" is no number of files");
    return count;
}

using TakeValue = void (*)(Options &options, const std::string &value);

const std::map<std::string, TakeValue> valueOptions{
    {"--only", [](Options &options, const std::string &value) { options.only.push_back(value); }},
    {"--files",
     [](Options &options, const std::string &value) { options.extent.filesPerGrade = countFrom(value); }},
    {"--negatives",
     [](Options &options, const std::string &value) { options.extent.filesPerSound = countFrom(value); }},
    {"--seed", [](Options &options,
                  const std::string &value) { options.extent.seed = numberFrom<std::uint64_t>(value); }},
    {"--csv", [](Options &options, const std::string &value) { options.csv = value; }},
    {"--merge", [](Options &options, const std::string &value) { options.merged.push_back(value); }},
    {"--page", [](Options &options, const std::string &value) { options.page = value; }},
    {"--plots", [](Options &options, const std::string &value) { options.plots = value; }},
    {"--case", [](Options &options, const std::string &value) { options.caseName = value; }},
    {"--save", [](Options &options, const std::string &value) { options.save = value; }},
};

const std::map<std::string, void (*)(Options &options)> switches{
    {"--quick",
     [](Options &options) {
         options.extent.filesPerGrade = 5;
         options.extent.filesPerSound = 20;
     }},
    {"--ours", [](Options &options) { options.extent.compare = false; }},
    {"--list", [](Options &options) { options.list = true; }},
    {"--help", [](Options &options) { options.help = true; }},
};

Options parse(const std::vector<std::string> &arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &name = arguments[i];
        const auto valueOption = valueOptions.find(name);
        const auto plainSwitch = switches.find(name);
        if (valueOption != valueOptions.end()) {
            if (i + 1 == arguments.size())
                throw std::invalid_argument(name + " needs a value");
            valueOption->second(options, arguments[++i]);
        } else if (plainSwitch != switches.end()) {
            plainSwitch->second(options);
        } else {
            throw std::invalid_argument("unknown option \"" + name + "\"; --help lists all");
        }
    }
    for (const std::string &argument : arguments)
        options.command += argument.find(' ') == std::string::npos ? " " + argument : " \"" + argument + "\"";
    return options;
}

bool isWanted(const Options &options, const std::string &section, const std::string &name)
{
    if (options.only.empty())
        return true;
    for (const std::string &part : options.only) {
        if (section.find(part) != std::string::npos || name.find(part) != std::string::npos)
            return true;
    }
    return false;
}

void write(const std::string &path, const std::string &text)
{
    std::ofstream file(path);
    file << text;
    file.close();
    if (!file)
        throw std::runtime_error(path + " could not be written");
}

void printList()
{
    for (const Curve &curve : allCurves())
        std::cout << curve.section << ": " << curve.name << "\n";
    for (const testsignals::OtherSound &sound : testsignals::otherSounds())
        std::cout << "Without timecode: " << sound.name << "\n";
}

int runCase(const Options &options)
{
    const std::optional<Case> recording = recordingNamed(options.caseName, options.extent.seed);
    if (!recording)
        throw std::invalid_argument("there is no case \"" + options.caseName + "\"");
    if (!options.save.empty()) {
        testsignals::WavFile wav;
        wav.sampleRate = recording->sampleRate;
        wav.format = testsignals::SampleFormat::Pcm24;
        wav.channels = recording->channels;
        testsignals::writeWav(options.save, wav);
    }
    std::cout << "there:            " << textOfTruth(*recording) << "\n";
    bool wrong = false;
    for (const Reader reader : allReaders) {
        const std::optional<Answer> answer = readWith(reader, *recording);
        wrong = wrong || (reader == Reader::Ours && judge(*recording, answer) == Verdict::Wrong);
        std::cout << textOf(reader, *recording, answer);
    }
    return wrong ? 1 : 0;
}

std::string contentsOf(const std::string &path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    if (!file)
        throw std::runtime_error(path + " could not be read");
    return text.str();
}

void sayWhatIsLeftOut(const Options &options)
{
    for (const testsignals::LossyCodec &codec : testsignals::lossyCodecs()) {
        if (isWanted(options, "Codecs", codec.name) && !testsignals::isAvailable(codec))
            std::cout << "left out: " << codec.name << " (this ffmpeg has no encoder \"" << codec.encoder
                      << "\")\n";
    }
}

/// Measures what is wanted and prints each result as it comes.
Results measure(const Options &options)
{
    sayWhatIsLeftOut(options);
    const ReportWrong reportWrong = [](const std::string &name, const Case &recording, const Answer &answer) {
        std::cout << textOfWrong(name, recording, answer) << std::flush;
    };
    Results results;
    for (const Curve &curve : allCurves()) {
        if (!isWanted(options, curve.section, curve.name))
            continue;
        results.curves.push_back(measureCurve(curve, options.extent, reportWrong));
        std::cout << textOf(results.curves.back()) << std::flush;
    }
    for (const testsignals::OtherSound &sound : testsignals::otherSounds()) {
        if (isWanted(options, "Without timecode", sound.name))
            results.sounds.push_back(measureSound(sound, options.extent, reportWrong));
    }
    if (!results.sounds.empty())
        std::cout << textOf(results.sounds);
    return results;
}

Results merge(const std::vector<std::string> &files)
{
    Results results;
    for (const std::string &file : files)
        addCsv(contentsOf(file), results);
    return results;
}

bool anyWrong(const Results &results)
{
    const auto wrong = [](const Tallies &tallies) {
        const auto ours = tallies.find(Reader::Ours);
        return ours != tallies.end() && ours->second.wrong > 0;
    };
    return std::any_of(results.curves.begin(), results.curves.end(),
                       [&wrong](const CurveResult &result) {
                           return std::any_of(result.grades.begin(), result.grades.end(), wrong);
                       }) ||
           std::any_of(results.sounds.begin(), results.sounds.end(),
                       [&wrong](const SoundResult &result) { return wrong(result.tallies); });
}

void writePlots(const std::string &folder, const std::vector<CurveResult> &curves)
{
    std::set<std::string> sections;
    for (const CurveResult &result : curves)
        sections.insert(result.curve.section);
    std::filesystem::create_directories(folder);
    for (const std::string &section : sections) {
        std::string name = "ltc-" + section + ".svg";
        for (char &letter : name)
            letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        write((std::filesystem::path(folder) / name).string(), plotOf(curves, section));
    }
}

int run(const Options &options)
{
    const Results results = options.merged.empty() ? measure(options) : merge(options.merged);
    std::vector<CostResult> costs;
    if (isWanted(options, "Cost", "Cost")) {
        costs = measureCosts(options.extent);
        std::cout << textOf(costs);
    }
    if (!results.curves.empty())
        std::cout << summaryOf(results.curves) << "\n" << shortfallsOf(results.curves);
    std::cout << totalsOf(results.curves, results.sounds) << detailsOf(results.curves);

    if (!options.csv.empty())
        write(options.csv, csvOf(results.curves, results.sounds));
    if (!options.page.empty())
        write(options.page, pageOf(options.command, results.curves, results.sounds, costs));
    if (!options.plots.empty())
        writePlots(options.plots, results.curves);
    return anyWrong(results) ? 1 : 0;
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
        std::cerr << "ltc-benchmark: " << error.what() << "\n";
        return 2;
    }
}

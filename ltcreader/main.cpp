// SPDX-License-Identifier: MIT
#include "ltcreader/commandline.h"
#include "ltcreader/decoder/decoder.h"
#include "ltcreader/diagnosis.h"
#include "ltcreader/report.h"
#include "ltcreader/sound/soundfile.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace
{

using namespace ltcreader;

constexpr const char *help =
    "Usage: LTCReader FILE [-cCHANNEL] [-fRATE] [-aALGORITHM] [-oFORMAT]\n"
    "Reads the linear timecode (LTC) in a WAV file and prints the timecode of its first sample.\n"
    "\n"
    "  -cCHANNEL    read this channel only; the first is 0 (default: the best one)\n"
    "  -fRATE       accept this frame rate only: 23.98, 24, 25, 29.97 or 30 (default: any)\n"
    "  -aALGORITHM  LOW, MID or HIGH: where the signal must pass to count as changed; SLOPE: look at\n"
    "               steepness instead of level (default: as the recording needs)\n"
    "  -oFORMAT     JSON (default) or TEXT, for people\n"
    "  --help       print this and end\n"
    "  --version    print the version and end\n"
    "\n"
    "Values follow their switch without a blank. Put \"--\" before a file name that begins with \"-\".\n";

int fail(ExitCode code, const std::string &reason)
{
    std::fprintf(stderr, "LTCReader: %s\n", reason.c_str());
    return static_cast<int>(code);
}

int print(const std::string &text)
{
    const bool written =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return written ? 0 : 1;
}

int failToFind(const Run &run, Doubt doubt)
{
    const std::string reason = isOfLabels(doubt) ? ": " + reasonFor(doubt, {}) : std::string();
    return fail(ExitCode::NotFound, "no timecode found in " + run.path + reason);
}

int answer(Question question)
{
    return print(question == Question::Help ? help : "LTCReader " LTCREADER_VERSION "\n");
}

/// What was read, or why nothing was, with a picture of the channels concerned.
int describe(const Run &run, const Outcome &outcome, SoundFile &file)
{
    if (!file.rewind())
        return fail(ExitCode::CannotOpen, "cannot read again " + run.path);
    const bool found = outcome.doubt == Doubt::None;
    std::string text = found ? toText(*outcome.likeliest) : std::string();
    const std::vector<Diagnosis> channels = diagnose(file);
    const int only = found ? outcome.likeliest->channel : run.settings.channel;
    for (int channel = 0; channel < static_cast<int>(channels.size()); ++channel) {
        if (only < 0 || channel == only)
            text += toText(channels[static_cast<std::size_t>(channel)], channel, outcome.doubt);
    }
    const int printed = print(text);
    return found ? printed : failToFind(run, outcome.doubt);
}

int readFile(const Run &run)
{
    SoundFileError error = SoundFileError::None;
    const auto file = SoundFile::open(run.path, error);
    if (!file) {
        return error == SoundFileError::CannotOpen
                   ? fail(ExitCode::CannotOpen, "cannot open " + run.path)
                   : fail(ExitCode::NotASoundFile, "no sound file that can be read: " + run.path);
    }
    if (run.settings.channel >= file->channels()) {
        return fail(ExitCode::ChannelOutOfRange,
                    run.path + " has " + std::to_string(file->channels()) + " channels, counted from 0");
    }
    const Outcome outcome = examine(*file, run.settings);
    if (run.format == OutputFormat::Text)
        return describe(run, outcome, *file);
    if (outcome.doubt != Doubt::None)
        return failToFind(run, outcome.doubt);
    return print(toJson(*outcome.likeliest));
}

int runProgram(const std::vector<std::string> &arguments)
{
    const auto exists = [](const std::string &path) {
        std::error_code ignored;
        return std::filesystem::exists(path, ignored);
    };
    const Command command = parseCommandLine(arguments, exists);
    if (const auto *question = std::get_if<Question>(&command))
        return answer(*question);
    if (const auto *refusal = std::get_if<Refusal>(&command))
        return fail(refusal->code, refusal->reason);
    return readFile(std::get<Run>(command));
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
    } catch (const std::exception &problem) {
        return fail(ExitCode::NotASoundFile, problem.what());
    }
}

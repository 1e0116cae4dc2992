// SPDX-License-Identifier: MIT
#include "ltcreader/commandline.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace ltcreader
{
namespace
{

/// A whole \a text as a number in the C locale, not the user's.
template <typename Number>
std::optional<Number> toNumber(std::string_view text)
{
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end ? std::optional(number) : std::nullopt;
}

std::optional<Algorithm> toAlgorithm(std::string_view name)
{
    if (name == "LOW")
        return Algorithm::Low;
    if (name == "MID")
        return Algorithm::Mid;
    if (name == "HIGH")
        return Algorithm::High;
    if (name == "SLOPE")
        return Algorithm::Slope;
    return std::nullopt;
}

/// Takes the switch \a text into \a run; returns what is wrong with it.
std::optional<Refusal> takeSwitch(const std::string &text, Run &run)
{
    const std::string_view value = std::string_view(text).substr(std::min<std::size_t>(2, text.size()));
    switch (text.size() < 2 ? '\0' : text[1]) {
    case 'c': {
        const auto channel = toNumber<int>(value);
        if (!channel)
            return Refusal{ExitCode::UnknownSwitch, "not a channel number: " + text};
        if (*channel < 0)
            return Refusal{ExitCode::ChannelOutOfRange, "channels are counted from 0: " + text};
        run.settings.channel = *channel;
        return std::nullopt;
    }
    case 'f': {
        const auto rate = toNumber<double>(value);
        if (!rate || !rateClass(*rate)) {
            return Refusal{ExitCode::UnsupportedFrameRate,
                           "the frame rate must be 23.98, 24, 25, 29.97 or 30: " + text};
        }
        run.settings.frameRate = *rate;
        return std::nullopt;
    }
    case 'a': {
        const auto algorithm = toAlgorithm(value);
        if (!algorithm) {
            return Refusal{ExitCode::UnknownAlgorithm,
                           "the algorithm must be LOW, MID, HIGH or SLOPE: " + text};
        }
        run.settings.algorithm = *algorithm;
        return std::nullopt;
    }
    case 'o':
        if (value != "JSON" && value != "TEXT") {
            return Refusal{ExitCode::UnknownFormat, "the output format must be JSON or TEXT: " + text};
        }
        run.format = value == "JSON" ? OutputFormat::Json : OutputFormat::Text;
        return std::nullopt;
    default:
        return Refusal{ExitCode::UnknownSwitch, "unknown switch: " + text};
    }
}

} // namespace

Command parseCommandLine(const std::vector<std::string> &arguments,
                         const std::function<bool(const std::string &)> &fileExists)
{
    Run run;
    bool haveFile = false;
    bool switchesEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        const bool isSwitch = !switchesEnded && argument.starts_with("-");
        if (isSwitch && (argument == "--help" || argument == "-h"))
            return Question::Help;
        if (isSwitch && argument == "--version")
            return Question::Version;
        if (isSwitch && argument == "--") {
            switchesEnded = true;
            continue;
        }
        if (isSwitch) {
            const auto refusal = takeSwitch(argument, run);
            if (!refusal)
                continue;
            if (i > 0 || !fileExists(argument))
                return *refusal;
        }
        if (haveFile)
            return Refusal{ExitCode::UnknownSwitch, "more than one file: " + argument};
        run.path = argument;
        haveFile = true;
    }
    if (!haveFile)
        return Refusal{ExitCode::NoFile, "no file to read (see --help)"};
    return run;
}

} // namespace ltcreader

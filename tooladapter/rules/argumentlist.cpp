// SPDX-License-Identifier: MIT
#include "tooladapter/rules/argumentlist.h"

#include "tooladapter/rules/names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

// The vocabulary of the application's lists.
constexpr std::array optionsWithValue{"-acodec"sv,   "-b:v"sv,         "-guess_layout_max"sv,
                                      "-map"sv,      "-map_channel"sv, "-map_metadata"sv,
                                      "-metadata"sv, "-pix_fmt"sv,     "-r"sv,
                                      "-s"sv,        "-ss"sv,          "-timecode"sv,
                                      "-t"sv,        "-vcodec"sv,      "-write_bext"sv};

} // namespace

std::optional<ArgumentList> parseArguments(const std::vector<std::string> &arguments)
{
    ArgumentList list;
    Options pending;
    bool inputSeen = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &word = arguments[i];
        const bool isLast = i + 1 == arguments.size();
        if (word == "-y") {
            pending.push_back({word, {}});
        } else if (word == "-i" && !inputSeen && !isLast) {
            inputSeen = true;
            list.input = arguments[++i];
            list.inputOptions = std::move(pending);
            pending.clear();
        } else if (isOneOf(optionsWithValue, word) && !isLast) {
            pending.push_back({word, arguments[++i]});
        } else if (inputSeen && (isLast || !word.starts_with('-'))) {
            // The folder of the last file is the user's and may begin with a dash.
            list.outputs.push_back({std::move(pending), word});
            pending.clear();
        } else {
            return std::nullopt;
        }
    }
    if (!inputSeen)
        return std::nullopt;
    if (!pending.empty())
        list.outputs.push_back({std::move(pending), {}});
    return list;
}

std::vector<std::string> renderArguments(const ArgumentList &list)
{
    std::vector<std::string> arguments;
    const auto append = [&arguments](const Options &options) {
        for (const Option &option : options) {
            arguments.push_back(option.name);
            if (option.name != "-y" && option.name != "-xerror")
                arguments.push_back(option.value);
        }
    };
    append(list.inputOptions);
    arguments.insert(arguments.end(), {"-i", list.input});
    for (const Output &output : list.outputs) {
        append(output.options);
        if (!output.path.empty())
            arguments.push_back(output.path);
    }
    return arguments;
}

Job jobOf(const ArgumentList &list)
{
    if (list.inputOptions.empty() || list.inputOptions.front().name != "-y")
        return Job::Unknown;
    if (hasOption(list.inputOptions, "-guess_layout_max"))
        return Job::Extraction;
    if (list.inputOptions.size() == 1 && list.outputs.size() == 1 && !list.outputs.front().path.empty())
        return Job::Export;
    return Job::Unknown;
}

std::optional<int> mappedStream(const std::string &map)
{
    return map.starts_with("0:") ? numberFrom(std::string_view{map}.substr(2)) : std::nullopt;
}

std::optional<int> numberFrom(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < 0)
        return std::nullopt;
    return number;
}

void append(Options &options, const Options &more)
{
    options.insert(options.end(), more.begin(), more.end());
}

bool hasOption(const Options &options, const std::string &name)
{
    return std::any_of(options.begin(), options.end(),
                       [&](const Option &option) { return option.name == name; });
}

} // namespace tooladapter

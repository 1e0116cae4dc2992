// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tooladapter
{

/// One option with its value; the value of a flag such as "-y" stays empty.
struct Option {
    std::string name;
    std::string value;

    bool operator==(const Option &) const = default;
};

using Options = std::vector<Option>;

/// One file to be written, with the options that stand before it.
struct Output {
    Options options;
    std::string path; ///< empty when options were given and no file followed
};

/// An argument list of the transcoding tool with one input, taken apart.
struct ArgumentList {
    Options inputOptions; ///< everything before "-i", in order
    std::string input;    ///< path of the source
    std::vector<Output> outputs;
};

/// Takes \a arguments apart. Nothing when they hold a word outside the vocabulary of the application's lists,
/// or not exactly one input: such a list is not one of the application's.
std::optional<ArgumentList> parseArguments(const std::vector<std::string> &arguments);

/// Which of the application's jobs an argument list asks for.
enum class Job {
    Unknown,    ///< not one of the application's lists: passed on untouched
    Extraction, ///< a few seconds of every audio stream into WAV files
    Export,     ///< one new file
};

/// Recognises the job by the words that the application's lists begin with.
Job jobOf(const ArgumentList &list);

/// The inverse of parseArguments().
std::vector<std::string> renderArguments(const ArgumentList &list);

/// The stream index that the value \a map of "-map" names, "0:1"; nothing where it names no single stream.
std::optional<int> mappedStream(const std::string &map);

/// \a text as a number of 0 or more; nothing for any other text.
std::optional<int> numberFrom(std::string_view text);

/// Adds \a more to the end of \a options.
void append(Options &options, const Options &more);

/// Whether one of \a options is called \a name.
bool hasOption(const Options &options, const std::string &name);

} // namespace tooladapter

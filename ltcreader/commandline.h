// SPDX-License-Identifier: MIT
#pragma once

#include "ltcreader/decoder/decoder.h"
#include "ltcreader/exitcode.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace ltcreader
{

/// In which form the answer is printed.
enum class OutputFormat {
    Json, ///< one JSON object
    Text  ///< for people
};

/// One run of the program.
struct Run {
    std::string path;
    Settings settings;
    OutputFormat format = OutputFormat::Json;
};

/// The user only wants to know how the program is used, or which version it is.
enum class Question { Help, Version };

/// What is wrong with the arguments.
struct Refusal {
    ExitCode code = ExitCode::NoFile;
    std::string reason; ///< one line for people
};

using Command = std::variant<Run, Question, Refusal>;

/// Understands the \a arguments that follow the program's name. \a fileExists says whether a path names a
/// file: a first argument that begins with "-" and is no switch is a file when there is one of that name.
Command parseCommandLine(const std::vector<std::string> &arguments,
                         const std::function<bool(const std::string &)> &fileExists);

} // namespace ltcreader

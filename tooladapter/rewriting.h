// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/argumentlist.h"

#include <stdexcept>

namespace tooladapter
{

/// Thrown where no argument list could give a right file; the text is one line for the user.
class Refusal : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Which of the application's jobs an argument list asks for.
enum class Job {
    Unknown,    ///< not one of the application's lists: passed on untouched
    Extraction, ///< a few seconds of every audio stream into WAV files
    Export,     ///< one new file
};

/// Recognises the job by the words that the application's lists begin with.
Job jobOf(const ArgumentList &list);

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

namespace tooladapter
{

/// Thrown when no correct file can come of a job, or has come of it; the text is one line for the user.
class Refusal : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Thrown where the machine lacks a tool.
class ToolMissing : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/oddcases.h"

#include <array>
#include <string>
#include <vector>

namespace ltcbench
{

/// What became of one recording.
struct OddResult {
    Draw draw;
    OddVerdict verdict = OddVerdict::Refused;
    double confidence = 0.0;  ///< of the likeliest timecode, answered or not
    bool tooNoisy = false;    ///< it was not answered because it is not proven
    bool likelyRight = false; ///< what the confidence is of is right, whatever else is broken
    std::string reason;       ///< of a refusal, or what is broken in the report
    std::string there;        ///< right lines, of wrong and broken answers only
    std::string answered;     ///< the label given, of wrong and broken answers only
};

/// Makes recording \a draw, has it read and judges the answer.
OddResult measure(const Draw &draw);

/// The labels of \a right; "no line" where there is none.
std::string textOf(const std::vector<Truth> &right);

/// Tables by behaviour, by disturbance and grade, and by length.
std::string tablesOf(const std::vector<OddResult> &results);

/// Wrong and broken answers, one a line.
std::string faultsOf(const std::vector<OddResult> &results);

/// How often the likeliest timecode is wrong and how often its confidence says so, in decades of 1 -
/// confidence: of all that were answered and those that were only not proven.
std::string calibrationOf(const std::vector<OddResult> &results);

/// A row for each recording.
std::string csvOf(const std::vector<OddResult> &results);

} // namespace ltcbench

// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/recordings/oddcases.h"

#include <QJsonObject>

#include <string>
#include <vector>

namespace ltcbench
{

using namespace testrecordings;

/// What became of one recording.
struct OddResult {
    Draw draw;
    Verdict verdict = Verdict::Refused;
    double confidence = 0.0;  ///< of the likeliest timecode, answered or not
    bool tooNoisy = false;    ///< it was not answered because it is not proven
    bool likelyRight = false; ///< what the confidence is of is right, whatever else is broken
    std::string reason;       ///< of a refusal, or what is broken in the report
    std::string there;        ///< right lines, of wrong and broken answers only
    std::string answered;     ///< the label given, of wrong and broken answers only

    bool isFault() const { return verdict == Verdict::Wrong || verdict == Verdict::Broken; }
};

/// Makes recording \a draw, has it read and judges the answer.
OddResult measure(const Draw &draw);

/// The labels of \a right; "no line" where there is none.
std::string textOf(const std::vector<Truth> &right);

/// A wrong or broken answer in a line: the name of the recording, what is in it and what was answered.
std::string textOfFault(const OddResult &result);

QJsonObject toJson(const OddResult &result);

} // namespace ltcbench

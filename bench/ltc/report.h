// SPDX-License-Identifier: MIT
#pragma once

#include "bench/ltc/measurement.h"

#include <string>
#include <vector>

namespace ltcbench
{

/// One curve: a line for every grade with the shares of each reader in per cent, then the 50 % points.
std::string textOf(const CurveResult &result);

std::string textOf(const std::vector<SoundResult> &results);
std::string textOf(const std::vector<CostResult> &results);

/// Files, wrong answers, positions and channels over all curves and sounds.
std::string totalsOf(const std::vector<CurveResult> &curves, const std::vector<SoundResult> &sounds);

/// 50 % points of all graded curves, as a Markdown table.
std::string summaryOf(const std::vector<CurveResult> &curves);

/// The graded curves on which libltc, with or without filters, reaches farther than the decoder: by more than
/// a quarter of the distance between two grades, which is within the chance of the draw.
std::string shortfallsOf(const std::vector<CurveResult> &curves);

/// Of the decoder's answers: rates, counting and channels that are right, how exact positions are, and
/// spikes.
std::string detailsOf(const std::vector<CurveResult> &curves);

/// The results as a page of documentation: \a command, the summary, the curves that are not graded, false
/// timecodes, CPU time, totals.
std::string pageOf(const std::string &command, const std::vector<CurveResult> &curves,
                   const std::vector<SoundResult> &sounds, const std::vector<CostResult> &costs);

/// One wrong answer in words: what was there and what was read.
std::string textOfWrong(const std::string &name, const Case &recording, const Answer &answer);

/// What a recording holds.
std::string textOfTruth(const Case &recording);

/// One reader's answer to a recording, with its verdict.
std::string textOf(Reader reader, const Case &recording, const std::optional<Answer> &answer);

} // namespace ltcbench

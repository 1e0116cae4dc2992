// SPDX-License-Identifier: MIT
#include "bench/ltc/oddreport.h"

#include "bench/ltc/figures.h"
#include "bench/ltc/readers.h"
#include "ltcreader/diagnosis.h"
#include "ltcreader/report.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace ltcbench
{

namespace
{

using Counts = std::array<int, 4>; // by verdict

int countOf(const Counts &counts, OddVerdict verdict)
{
    return counts[static_cast<std::size_t>(verdict)];
}

int answersIn(const Counts &counts)
{
    return countOf(counts, OddVerdict::Right) + countOf(counts, OddVerdict::Wrong) +
           countOf(counts, OddVerdict::Broken);
}

std::string row(const std::string &name, const Counts &counts)
{
    const int refused = countOf(counts, OddVerdict::Refused);
    return format("%-40s %8d %8d %8d %8d %8d %8d\n", name.c_str(), answersIn(counts) + refused,
                  answersIn(counts), countOf(counts, OddVerdict::Right), refused,
                  countOf(counts, OddVerdict::Wrong), countOf(counts, OddVerdict::Broken));
}

using NameOfRow = std::function<std::string(const OddResult &)>;

/// Rows come in the order in which \a names has them; what is not in there is left out.
std::string table(const std::string &title, const std::vector<std::string> &names,
                  const std::vector<OddResult> &results, const NameOfRow &nameOfRow)
{
    std::string text = format("%-40s %8s %8s %8s %8s %8s %8s\n", title.c_str(), "files", "answers", "right",
                              "refused", "wrong", "broken");
    for (const std::string &name : names) {
        Counts counts{};
        for (const OddResult &result : results) {
            if (nameOfRow(result) == name)
                ++counts[static_cast<std::size_t>(result.verdict)];
        }
        if (counts != Counts{})
            text += row(name, counts);
    }
    return text + "\n";
}

const char *nameOfGrade(int grade)
{
    constexpr std::array<const char *, 4> names{"", ", easy", ", at the edge", ", beyond"};
    return names[static_cast<std::size_t>(grade)];
}

std::string nameOfLength(double seconds)
{
    return format("%g s", seconds);
}

std::string textOf(LtcTime label, LtcRate rate)
{
    return testsignals::text(label, rate) + " at " + nameOf(rate);
}

/// Why the decoder did not answer for \a recording.
std::string reasonOfRefusal(ltcreader::Doubt doubt, const Case &recording)
{
    ltcreader::MemorySource source(recording.channels.front(), 1, recording.sampleRate);
    return ltcreader::reasonFor(doubt, ltcreader::diagnose(source).front());
}

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char letter : text)
        result += letter == '"' ? "\"\"" : std::string(1, letter);
    return result + "\"";
}

} // namespace

OddResult measure(const Draw &draw)
{
    const OddCase odd = caseOf(draw);
    OddResult result;
    result.draw = draw;
    const ltcreader::Outcome outcome = outcomeOf(odd.recording);
    const auto &reading = outcome.likeliest;
    if (reading) {
        result.confidence = reading->confidence;
        result.likelyRight = judge(odd.right, answerOf(*reading), {}) == OddVerdict::Right;
    }
    result.tooNoisy =
        outcome.doubt == ltcreader::Doubt::TooNoisy || outcome.doubt == ltcreader::Doubt::RateClass;
    if (outcome.doubt != ltcreader::Doubt::None) {
        result.reason = reasonOfRefusal(outcome.doubt, odd.recording);
        return result;
    }
    const Answer answer = answerOf(*reading);
    result.reason = faultIn(ltcreader::toJson(*reading), odd.recording.sampleRate);
    result.verdict = judge(odd.right, answer, result.reason);
    if (result.verdict != OddVerdict::Right) {
        result.there = textOf(odd.right);
        result.answered = textOf(answer.start, answer.rate);
    }
    return result;
}

std::string textOf(const std::vector<Truth> &right)
{
    std::string text;
    for (const Truth &line : right)
        text += (text.empty() ? "" : " or ") + textOf(testsignals::startTime(line.signal), line.signal.rate);
    return text.empty() ? "no line" : text;
}

std::string tablesOf(const std::vector<OddResult> &results)
{
    std::vector<std::string> behaviours;
    for (const Behaviour &behaviour : allBehaviours())
        behaviours.push_back(behaviour.name);
    std::vector<std::string> disturbances;
    for (const Disturbance &disturbance : allDisturbances()) {
        for (int grade = 0; grade <= 3; ++grade)
            disturbances.push_back(disturbance.name + nameOfGrade(grade));
    }
    std::vector<std::string> lengths;
    for (const Length &length : allLengths())
        lengths.push_back(nameOfLength(length.seconds));
    return table("Behaviour", behaviours, results,
                 [](const OddResult &result) { return result.draw.behaviour->name; }) +
           table("Disturbance", disturbances, results,
                 [](const OddResult &result) {
                     return result.draw.disturbance->name + nameOfGrade(result.draw.grade);
                 }) +
           table("Length", lengths, results,
                 [](const OddResult &result) { return nameOfLength(result.draw.seconds); }) +
           table("All", {""}, results, [](const OddResult &) { return ""; });
}

std::string faultsOf(const std::vector<OddResult> &results)
{
    std::string text;
    for (const OddResult &result : results) {
        if (result.verdict != OddVerdict::Wrong && result.verdict != OddVerdict::Broken)
            continue;
        const Draw &draw = result.draw;
        text += format("%s %s: %s, %s, %g s", nameOf(result.verdict).c_str(), nameOf(draw).c_str(),
                       draw.behaviour->name.c_str(), nameOf(draw.rate).c_str(), draw.seconds);
        if (draw.grade > 0)
            text += format(", %s %.4g %s", draw.disturbance->name.c_str(), draw.value,
                           draw.disturbance->unit.c_str());
        text += "; there " + result.there + ", answered " + result.answered +
                format(", confidence %.9g", result.confidence);
        text += result.reason.empty() ? "\n" : "; " + result.reason + "\n";
    }
    return text;
}

std::string calibrationOf(const std::vector<OddResult> &results)
{
    struct Decade {
        int files = 0;
        int wrong = 0;
        double claimed = 0.0; ///< wrong ones by the confidences
    };
    std::array<Decade, 7> decades{};
    for (const OddResult &result : results) {
        if (result.verdict == OddVerdict::Refused && !(result.tooNoisy && result.confidence > 0.0))
            continue;
        constexpr double least = 1e-12; // keeps the logarithm finite
        const double doubt = std::clamp(1.0 - result.confidence, least, 1.0);
        const auto place = static_cast<std::size_t>(-std::log10(doubt));
        Decade &decade = decades[std::min(place, decades.size() - 1)];
        ++decade.files;
        decade.wrong += result.likelyRight ? 0 : 1;
        decade.claimed += doubt;
    }
    std::string text =
        format("%-40s %8s %8s %12s %12s\n", "1 - confidence", "likeliest", "wrong", "wrong share", "claimed");
    for (std::size_t place = 0; place < decades.size(); ++place) {
        const Decade &decade = decades[place];
        const std::string range = place + 1 == decades.size() ? format("1e-%zu and less", place)
                                                              : format("1e-%zu to 1e-%zu", place, place + 1);
        const double files = std::max(1, decade.files);
        text += format("%-40s %8d %8d %12.2g %12.2g\n", range.c_str(), decade.files, decade.wrong,
                       decade.wrong / files, decade.claimed / files);
    }
    return text + "\n";
}

std::string csvOf(const std::vector<OddResult> &results)
{
    std::string text =
        "case,behaviour,disturbance,grade,value,seconds,rate,verdict,answered,confidence,reason\n";
    for (const OddResult &result : results) {
        const Draw &draw = result.draw;
        text += format("%s,%s,%s,%d,%.6g,%g,%s,%s,%d,%.12g,%s\n", nameOf(draw).c_str(),
                       quoted(draw.behaviour->name).c_str(), quoted(draw.disturbance->name).c_str(),
                       draw.grade, draw.value, draw.seconds, nameOf(draw.rate).c_str(),
                       nameOf(result.verdict).c_str(), result.verdict == OddVerdict::Refused ? 0 : 1,
                       result.confidence, quoted(result.reason).c_str());
    }
    return text;
}

} // namespace ltcbench

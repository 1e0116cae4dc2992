// SPDX-License-Identifier: MIT
#include "bench/ltc/oddresult.h"

#include "bench/ltc/readers.h"
#include "ltcreader/diagnosis.h"
#include "ltcreader/report.h"

#include <QString>

namespace ltcbench
{

namespace
{

std::string textOf(LtcTime label, LtcRate rate)
{
    return testsignals::text(label, rate) + " at " + nameOf(rate);
}

std::string text(double value, int digits)
{
    return QString::number(value, 'g', digits).toStdString();
}

} // namespace

OddResult measure(const Draw &draw)
{
    const OddCase odd = caseOf(draw);
    OddResult result;
    result.draw = draw;
    const auto [reading, doubt] = outcomeOf(odd.recording);
    if (reading) {
        result.confidence = reading->confidence;
        result.likelyRight = judge(odd.right, answerOf(*reading), {}) == Verdict::Right;
    }
    result.tooNoisy = doubt == ltcreader::Doubt::TooNoisy || doubt == ltcreader::Doubt::RateClass;
    if (doubt != ltcreader::Doubt::None) {
        ltcreader::MemorySource source(odd.recording.channels.front(), 1, odd.recording.sampleRate);
        result.reason = ltcreader::reasonFor(doubt, ltcreader::diagnose(source).front());
        return result;
    }
    const Answer answer = answerOf(*reading);
    result.reason = faultIn(ltcreader::toJson(*reading), odd.recording.sampleRate);
    result.verdict = judge(odd.right, answer, result.reason);
    if (result.isFault()) {
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

std::string textOfFault(const OddResult &result)
{
    const Draw &draw = result.draw;
    std::string line = nameOf(result.verdict) + " " + nameOf(draw) + ": " + draw.behaviour->name + ", " +
                       nameOf(draw.rate) + ", " + text(draw.seconds, 6) + " s";
    if (draw.grade > 0)
        line += ", " + draw.disturbance->name + " " + text(draw.value, 4) + " " + draw.disturbance->unit;
    line += "; there " + result.there + ", answered " + result.answered + ", confidence " +
            text(result.confidence, 9);
    return result.reason.empty() ? line : line + "; " + result.reason;
}

QJsonObject toJson(const OddResult &result)
{
    const Draw &draw = result.draw;
    const auto text = [](const std::string &words) { return QString::fromStdString(words); };
    return {{"case", text(nameOf(draw))},
            {"behaviour", text(draw.behaviour->name)},
            {"disturbance", text(draw.disturbance->name)},
            {"grade", draw.grade},
            {"value", draw.value},
            {"seconds", draw.seconds},
            {"rate", text(nameOf(draw.rate))},
            {"verdict", text(nameOf(result.verdict))},
            {"confidence", result.confidence},
            {"too_noisy", result.tooNoisy},
            {"likely_right", result.likelyRight},
            {"reason", text(result.reason)}};
}

} // namespace ltcbench

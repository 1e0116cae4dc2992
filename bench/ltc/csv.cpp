// SPDX-License-Identifier: MIT
#include "bench/ltc/csv.h"

#include "bench/ltc/figures.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace ltcbench
{
namespace
{

constexpr const char *head =
    "section,name,unit,grade,reader,files,right,wrong,refused,other_rate,other_count,other_channel,"
    "position_errors";
constexpr std::size_t fieldCount = 13;
constexpr const char *soundSection = "Without timecode";

std::string quoted(const std::string &text)
{
    return "\"" + text + "\"";
}

/// The fields of \a line without the quotes around them; no field holds a quote.
std::vector<std::string> fieldsOf(const std::string &line)
{
    std::vector<std::string> fields(1);
    bool inQuotes = false;
    for (const char letter : line) {
        if (letter == '"') {
            inQuotes = !inQuotes;
        } else if (letter == ',' && !inQuotes) {
            fields.emplace_back();
        } else {
            fields.back() += letter;
        }
    }
    return fields;
}

Reader readerCalled(const std::string &title)
{
    for (const Reader reader : allReaders) {
        if (title == titleOf(reader))
            return reader;
    }
    throw std::invalid_argument("\"" + title + "\" is no reader");
}

Tally tallyFrom(const std::vector<std::string> &fields)
{
    Tally tally;
    tally.right = numberFrom<int>(fields[6]);
    tally.wrong = numberFrom<int>(fields[7]);
    tally.refused = numberFrom<int>(fields[8]);
    tally.otherRate = numberFrom<int>(fields[9]);
    tally.otherCount = numberFrom<int>(fields[10]);
    tally.otherChannel = numberFrom<int>(fields[11]);
    std::istringstream errors(fields[12]);
    double error = 0.0;
    while (errors >> error)
        tally.positionErrors.push_back(error);
    return tally;
}

CurveResult &curveCalled(const std::string &name, std::vector<CurveResult> &results)
{
    const auto known = std::find_if(results.begin(), results.end(),
                                    [&name](const CurveResult &result) { return result.curve.name == name; });
    if (known != results.end())
        return *known;
    for (const Curve &curve : allCurves()) {
        if (curve.name == name)
            return results.emplace_back(CurveResult{curve, std::vector<Tallies>(curve.grades.size())});
    }
    throw std::invalid_argument("there is no curve \"" + name + "\"");
}

SoundResult &soundCalled(const std::string &name, std::vector<SoundResult> &results)
{
    const auto known = std::find_if(results.begin(), results.end(),
                                    [&name](const SoundResult &result) { return result.name == name; });
    return known != results.end() ? *known : results.emplace_back(SoundResult{name, {}});
}

Tallies &gradeOf(CurveResult &result, const std::string &grade)
{
    for (std::size_t i = 0; i < result.grades.size(); ++i) {
        if (format("%g", result.curve.grades[i]) == grade)
            return result.grades[i];
    }
    throw std::invalid_argument("\"" + grade + "\" is no grade of " + result.curve.name);
}

} // namespace

std::string csvOf(const std::vector<CurveResult> &curves, const std::vector<SoundResult> &sounds)
{
    std::string text = std::string(head) + "\n";
    const auto addLines = [&text](const std::string &beginning, const Tallies &tallies) {
        for (const auto &[reader, tally] : tallies) {
            text += beginning + format(",\"%s\",%d,%d,%d,%d,%d,%d,%d,", titleOf(reader), tally.files(),
                                       tally.right, tally.wrong, tally.refused, tally.otherRate,
                                       tally.otherCount, tally.otherChannel);
            for (std::size_t i = 0; i < tally.positionErrors.size(); ++i)
                text += format(i == 0 ? "%g" : " %g", tally.positionErrors[i]);
            text += "\n";
        }
    };
    for (const CurveResult &result : curves) {
        const std::string beginning =
            quoted(result.curve.section) + "," + quoted(result.curve.name) + "," + quoted(result.curve.unit);
        for (std::size_t grade = 0; grade < result.grades.size(); ++grade)
            addLines(beginning + format(",%g", result.curve.grades[grade]), result.grades[grade]);
    }
    for (const SoundResult &result : sounds)
        addLines(quoted(soundSection) + "," + quoted(result.name) + ",\"\",0", result.tallies);
    return text;
}

void addCsv(const std::string &csv, Results &results)
{
    std::istringstream lines(csv);
    std::string line;
    if (!std::getline(lines, line) || line != head)
        throw std::invalid_argument("these are no figures of this benchmark");
    while (std::getline(lines, line)) {
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() != fieldCount)
            throw std::invalid_argument("not a line of figures: " + line);
        Tallies &tallies = fields[0] == soundSection
                               ? soundCalled(fields[1], results.sounds).tallies
                               : gradeOf(curveCalled(fields[1], results.curves), fields[3]);
        tallies[readerCalled(fields[4])].add(tallyFrom(fields));
    }
}

} // namespace ltcbench

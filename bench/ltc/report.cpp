// SPDX-License-Identifier: MIT
#include "bench/ltc/report.h"

#include "bench/ltc/figures.h"

#include <algorithm>
#include <ctime>

namespace ltcbench
{

namespace
{

std::string halfPointText(const CurveResult &result, Reader reader)
{
    if (tallyOf(result.grades.front(), reader).files() == 0)
        return "-";
    const std::optional<double> position = halfPosition(result, reader);
    if (!position)
        return "none";
    const bool allAbove = *position >= static_cast<double>(result.curve.grades.size() - 1);
    return format("%s%.4g", allAbove ? "beyond " : "", *halfPoint(result, reader));
}

std::string textOfAnswer(const Answer &answer)
{
    return testsignals::text(answer.start, answer.rate) + " at " + nameOf(answer.rate) +
           format(", channel %d, %lld samples since midnight", answer.channel,
                  static_cast<long long>(answer.samplesSinceMidnight));
}

} // namespace

std::string textOf(const CurveResult &result)
{
    std::string text = format("\n%s: %s (%s)\n%10s", result.curve.section.c_str(), result.curve.name.c_str(),
                              result.curve.unit.c_str(), "grade");
    for (const Reader reader : allReaders)
        text += format(" | %-22s", (std::string(titleOf(reader)) + ": r/w/ref %").c_str());
    text += " | position error: median, largest [samples]\n";
    for (std::size_t grade = 0; grade < result.grades.size(); ++grade) {
        text += format("%10.5g", result.curve.grades[grade]);
        for (const Reader reader : allReaders) {
            const Tally &tally = tallyOf(result.grades[grade], reader);
            text += tally.files() == 0
                        ? format(" | %22s", "-")
                        : format(" |      %5.0f %5.0f %5.0f", percent(tally.right, tally.files()),
                                 percent(tally.wrong, tally.files()), percent(tally.refused, tally.files()));
        }
        const Tally &ours = tallyOf(result.grades[grade], Reader::Ours);
        text += format(" | %.0f, %.0f", medianOf(ours.positionErrors), largestOf(ours.positionErrors));
        text += ours.otherChannel > 0 ? format(", other channel: %d\n", ours.otherChannel) : "\n";
    }
    if (result.curve.graded) {
        text += "  50 % point:";
        for (const Reader reader : allReaders)
            text += format("  %s %s", titleOf(reader), halfPointText(result, reader).c_str());
        text += "\n";
    }
    return text;
}

std::string textOf(const std::vector<SoundResult> &results)
{
    std::string text = format("\nRecordings without timecode\n%-30s %8s", "sound", "files");
    for (const Reader reader : allReaders)
        text += format(" %18s", titleOf(reader));
    text += "  (timecodes read)\n";
    for (const SoundResult &result : results) {
        text += format("%-30s %8d", result.name.c_str(), tallyOf(result.tallies, Reader::Ours).files());
        for (const Reader reader : allReaders)
            text += format(" %18d", tallyOf(result.tallies, reader).wrong);
        text += "\n";
    }
    return text;
}

std::string textOf(const std::vector<CostResult> &results)
{
    std::string text = format("\nCPU time for 3 s at 48 kHz\n%-36s %12s %22s\n", "recording", "LTCReader",
                              "libltc, one channel");
    for (const CostResult &result : results)
        text += format("%-36s %9.2f ms %19.2f ms\n", result.name.c_str(), result.ours, result.libltc);
    return text;
}

std::string totalsOf(const std::vector<CurveResult> &curves, const std::vector<SoundResult> &sounds)
{
    std::string text = format("\nTotals\n%-18s %9s %9s %9s %9s %14s %22s %15s\n", "reader", "files", "right",
                              "wrong", "refused", "other channel", "without timecode", "false timecodes");
    for (const Reader reader : allReaders) {
        Tally sum;
        for (const CurveResult &result : curves) {
            for (const Tallies &tallies : result.grades)
                sum.add(tallyOf(tallies, reader));
        }
        Tally others;
        for (const SoundResult &result : sounds)
            others.add(tallyOf(result.tallies, reader));
        text += format("%-18s %9d %9d %9d %9d %14d %22d %15d\n", titleOf(reader), sum.files(), sum.right,
                       sum.wrong, sum.refused, sum.otherChannel, others.files(), others.wrong);
    }
    return text;
}

std::string detailsOf(const std::vector<CurveResult> &curves)
{
    Tally all;
    Tally clean;
    Tally equalNoise;
    Tally spikes;
    for (const CurveResult &result : curves) {
        for (std::size_t grade = 0; grade < result.grades.size(); ++grade) {
            const Tally &tally = tallyOf(result.grades[grade], Reader::Ours);
            all.add(tally);
            const std::string &name = result.curve.name;
            const double value = result.curve.grades[grade];
            if (name == "clean")
                clean.add(tally);
            if (name.rfind("white noise, 3 s", 0) == 0 && value == 0.0)
                equalNoise.add(tally);
            if (name == "spikes, -50 to -1 dBFS" || (name == "spikes by level" && value >= -50.0))
                spikes.add(tally);
        }
    }
    const auto rightShare = [&all](int other) { return 100.0 - percent(other, all.answers()); };
    const auto position = [](const char *what, const Tally &tally) {
        return format("Position, %s: median error %.0f, largest %.0f samples (%zu files)\n", what,
                      medianOf(tally.positionErrors), largestOf(tally.positionErrors),
                      tally.positionErrors.size());
    };
    return format("\nLTCReader's %d answers: rate class right in %.2f %%, drop-frame flag in %.2f %%, "
                  "channel in "
                  "%.2f %%\n",
                  all.answers(), rightShare(all.otherRate), rightShare(all.otherCount),
                  rightShare(all.otherChannel)) +
           position("clean", clean) + position("white noise of equal power, 3 s", equalNoise) +
           format("Spikes of 20 to 500 us, -50 dBFS and louder: %.1f %% right (%d files)\n",
                  percent(spikes.right, spikes.files()), spikes.files());
}

std::string summaryOf(const std::vector<CurveResult> &curves)
{
    std::string text = "\n| Section | Impairment | Unit | LTCReader | libltc | libltc, filtered "
                       "|\n|---|---|---|---|---|---|\n";
    for (const CurveResult &result : curves) {
        if (!result.curve.graded)
            continue;
        text += "| " + result.curve.section + " | " + result.curve.name + " | " + result.curve.unit;
        for (const Reader reader : allReaders)
            text += " | " + halfPointText(result, reader);
        text += " |\n";
    }
    return text;
}

std::string shortfallsOf(const std::vector<CurveResult> &curves)
{
    constexpr double margin = 0.25; // [grades]
    std::string text;
    for (const CurveResult &result : curves) {
        const double ours = halfPosition(result, Reader::Ours).value_or(-1.0);
        for (const Reader reader : {Reader::Libltc, Reader::FilteredLibltc}) {
            if (result.curve.graded && halfPosition(result, reader).value_or(-1.0) > ours + margin)
                text += format("%s reaches farther: %s\n", titleOf(reader), result.curve.name.c_str());
        }
    }
    return text.empty() ? "libltc reaches farther on no curve\n" : text;
}

std::string pageOf(const std::string &command, const std::vector<CurveResult> &curves,
                   const std::vector<SoundResult> &sounds, const std::vector<CostResult> &costs)
{
    std::array<char, 32> date{};
    const std::time_t now = std::time(nullptr);
    std::strftime(date.data(), date.size(), "%d %B %Y", std::gmtime(&now));
    std::string page = "# Results of the LTC benchmark\n\nMeasured on " + std::string(date.data()) +
                       " with this command; [how](ltc-benchmark.md).\n\n    " + command +
                       "\n\n## 50 % points\n" + summaryOf(curves) + "\n" + shortfallsOf(curves) +
                       "\n## Read right, where there are no grades\n\n```";
    for (const CurveResult &result : curves) {
        if (!result.curve.graded)
            page += textOf(result);
    }
    return page + "```\n\n## Sounds without timecode\n\n```" + textOf(sounds) + "```\n\n## CPU time\n\n```" +
           textOf(costs) + "```\n\n## Totals\n\n```" + totalsOf(curves, sounds) + detailsOf(curves) + "```\n";
}

std::string textOfTruth(const Case &recording)
{
    if (!recording.truth)
        return "no timecode";
    const LtcSignal &signal = recording.truth->signal;
    return testsignals::text(testsignals::startTime(signal), signal.rate) + " at " + nameOf(signal.rate) +
           format(", channel %d, %lld samples since midnight", recording.truth->channel,
                  static_cast<long long>(testsignals::samplesSinceMidnight(signal)));
}

std::string textOf(Reader reader, const Case &recording, const std::optional<Answer> &answer)
{
    const std::string name = format("%-18s", (std::string(titleOf(reader)) + ":").c_str());
    if (!answer)
        return name + "nothing found\n";
    return name + textOfAnswer(*answer) +
           (judge(recording, answer) == Verdict::Right ? ": right\n" : ": wrong\n");
}

std::string textOfWrong(const std::string &name, const Case &recording, const Answer &answer)
{
    return "WRONG " + name + ": " + textOfTruth(recording) + " was read as " + textOfAnswer(answer) + "\n";
}

} // namespace ltcbench

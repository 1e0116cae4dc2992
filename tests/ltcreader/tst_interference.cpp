// SPDX-License-Identifier: MIT
#include "ltcreader/sync/interference.h"

#include "ltcreader/decision/adaptivedecision.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/ltcsignal.h"
#include "testkit/signals/noise.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace ltcreader;

namespace
{

constexpr std::int64_t start = (10 * 3600 + 20 * 60 + 30) * 25 + 12; // [frames] since midnight

/// Timecode below hum, whose lines the front end takes out.
Candidate candidateInHum()
{
    testsignals::LtcSignal signal;
    signal.start = {10, 20, 30, 12};
    testsignals::Samples samples = testsignals::ltcAudio(signal);
    testsignals::Random random(5);
    testsignals::addAtRatio(samples, testsignals::hum(random, samples.size(), signal.sampleRate), -28.0);
    const std::vector<Candidate> candidates = findCandidates(samples, signal.sampleRate);
    const auto whitened = std::find_if(candidates.begin(), candidates.end(), [](const Candidate &candidate) {
        return candidate.frontEnd == FrontEnd::Whitened && !candidate.isEqualised;
    });
    return whitened == candidates.end() ? Candidate() : *whitened;
}

/// \a levels with those of some bits reversed in every frame, every second one...
std::vector<float> reversed(std::vector<float> levels, BitField bits, std::size_t every)
{
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const int bit = static_cast<int>(i % halvesPerFrame) / 2;
        if (i / halvesPerFrame % every == 0 && bit >= bits.first && bit < bits.end())
            levels[i] = -levels[i];
    }
    return levels;
}

double distance(const std::vector<float> &a, const std::vector<float> &b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += std::pow(static_cast<double>(a[i] - b[i]), 2.0);
    return std::sqrt(sum / static_cast<double>(a.size()));
}

} // namespace

class TestInterference : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whatIsKnownIsRemoved();
    void levelsThatAreNotKnownTakeNothingAway();
    void linesTakeFromWhatStandsStill();
    void echoesBendNoFrameTowardsItsOwnLevels();
    void aDecisionThatIsFoundAgainIsSurer();
    void anotherRateIsNotDecidedFor();

private:
    Candidate candidate;
    LabelDecision first; ///< with all interference
    std::optional<AdaptiveDecision> adapted;
};

void TestInterference::initTestCase()
{
    candidate = candidateInHum();
    QVERIFY(candidate.sound);
    const auto decision = decideTimecode(candidate.grid, candidate.frameRate());
    QVERIFY(decision);
    first = *decision;
    adapted = decideAdaptively(decideTimecode, candidate, std::nullopt);
    QVERIFY(adapted);
    QCOMPARE(adapted->decision.count, start);
}

void TestInterference::whatIsKnownIsRemoved()
{
    const std::vector<float> &levels = adapted->decision.levels;
    const FrameGrid cleaned = Interference(candidate).removed(levels).grid;
    QVERIFY2(distance(cleaned.halves, levels) < 0.5 * distance(candidate.grid.halves, levels),
             qPrintable(QString::number(distance(cleaned.halves, levels))));
    QVERIFY(cleaned.isDecisionDirected && !candidate.grid.isDecisionDirected);
}

void TestInterference::levelsThatAreNotKnownTakeNothingAway()
{
    const std::vector<float> unknown(first.levels.size(), 0.0F);
    QVERIFY(distance(Interference(candidate).removed(unknown).grid.halves, candidate.grid.halves) < 0.01);
}

void TestInterference::linesTakeFromWhatStandsStill()
{
    // What is the same in every frame has all its power at multiples of the frame rate, what is in a single
    // one next to nothing.
    auto sound = std::make_shared<FilteredSound>(*candidate.sound);
    const double binWidth = sound->sampleRate / static_cast<double>(sound->transformSize);
    sound->gains.assign(sound->transformSize / 2, 1.0F);
    sound->divisors.assign(sound->divisors.size(), 1.0F);
    Candidate filtered = candidate;
    filtered.sound = sound;
    const std::vector<float> &levels = adapted->decision.levels;
    constexpr BitField lastUserBits{60,
                                    4}; // behind the phase correction bit: of the same polarity in all frames
    const std::vector<float> always = reversed(levels, lastUserBits, 1);
    const std::vector<float> once = reversed(levels, lastUserBits, levels.size());
    const std::vector<double> all = Interference(filtered).sharesLeft(levels, {always, once, always});
    QCOMPARE(all.size(), std::size_t{3});
    for (const double share : all)
        QVERIFY2(std::abs(share - 1.0) < 0.1, qPrintable(QString::number(share)));
    for (std::size_t bin = 0; bin < sound->gains.size(); ++bin) {
        if (std::abs(std::remainder(static_cast<double>(bin) * binWidth, 25.0)) < 1.0)
            sound->gains[bin] = 0.0F;
    }
    const std::vector<double> shares = Interference(filtered).sharesLeft(levels, {always, once});
    QVERIFY2(shares[0] < 0.1, qPrintable(QString::number(shares[0])));
    QVERIFY2(shares[1] > 0.9, qPrintable(QString::number(shares[1])));
}

void TestInterference::echoesBendNoFrameTowardsItsOwnLevels()
{
    const std::vector<float> &levels = adapted->decision.levels;
    std::vector<float> wrong = levels;
    const std::vector<float> otherHour = reversed(levels, field::hourUnits, 1);
    std::copy_n(otherHour.begin(), 5 * halvesPerFrame, wrong.begin());
    const Interference interference(candidate);
    const auto bent = [&](const FrameGrid &right, const FrameGrid &other) {
        double sum = 0.0;
        for (std::size_t i = 0; i < 5 * halvesPerFrame; ++i)
            sum += static_cast<double>((other.halves[i] - right.halves[i]) * (wrong[i] - levels[i]));
        return std::abs(sum);
    };
    const double byAll = bent(interference.removed(levels).grid, interference.removed(wrong).grid);
    const double byEchoes =
        bent(interference.echoesRemoved(levels).grid, interference.echoesRemoved(wrong).grid);
    QVERIFY2(byEchoes < 0.5 * byAll, qPrintable(QString("%1 and %2").arg(byEchoes).arg(byAll)));
}

void TestInterference::aDecisionThatIsFoundAgainIsSurer()
{
    QVERIFY(first.repetition > 1.0);
    QVERIFY2(adapted->decision.margin > 3.0 * first.margin,
             qPrintable(QString("%1, then %2").arg(first.margin).arg(adapted->decision.margin)));
    QVERIFY(adapted->decision.amplitude > first.amplitude);
}

void TestInterference::anotherRateIsNotDecidedFor()
{
    QVERIFY(!decideAdaptively(decideTimecode, candidate, timecode::Rate{30, false, false}));
}

QTEST_APPLESS_MAIN(TestInterference)
#include "tst_interference.moc"

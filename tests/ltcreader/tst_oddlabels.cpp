// SPDX-License-Identifier: MIT

// Recordings whose labels do something else than counting up: the decoder refuses them, however well it reads
// them.

#include "ltcreader/decoder/decoder.h"
#include "testkit/signals/biphasemark.h"
#include "testkit/signals/impairments.h"
#include "testkit/signals/noise.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <functional>

using namespace ltcreader;
using testsignals::LtcRate;
using testsignals::LtcSignal;
using testsignals::LtcTime;

namespace
{

/// The label of the frame `index` frames after the first one.
using LabelAt = std::function<LtcTime(std::int64_t index, LtcRate rate)>;

constexpr LtcTime start{10, 20, 30, 12};
constexpr LtcTime later{4, 5, 6, 7};

LtcTime counting(LtcTime from, std::int64_t index, LtcRate rate)
{
    return testsignals::timeOfFrame(testsignals::frameNumber(from, rate) + index, rate);
}

LtcTime illegalHour(std::int64_t index, LtcRate rate)
{
    LtcTime label = counting(start, index, rate);
    label.hours = 27;
    return label;
}

LtcTime illegalSecond(std::int64_t index, LtcRate rate)
{
    LtcTime label = counting(start, index, rate);
    label.seconds = 60 + label.seconds % 20;
    return label;
}

/// Counts up to the end of the minute without leaving out labels, against the flag.
LtcTime countingWithoutDrops(std::int64_t index, LtcRate)
{
    return counting({10, 20, 59, 20}, index, {30, true, false});
}

} // namespace

Q_DECLARE_METATYPE(LabelAt)
Q_DECLARE_METATYPE(ltcreader::Doubt)
Q_DECLARE_METATYPE(testsignals::LtcRate)

class TestOddLabels : public QObject
{
    Q_OBJECT

private slots:
    void labelsThatDoNotCountUpAreRefused_data();
    void labelsThatDoNotCountUpAreRefused();
    void theReasonIsNamed_data();
    void theReasonIsNamed();
    void aJumpInNoiseIsNeverAnsweredWithTheLaterLine();
    void anEarlyJumpThatSingleFramesShowIsNotOverruled();
    void sevenCleanFramesBeforeAJumpAreRead();
    void sevenCleanFramesBeforeASkipAreNot();
    void aClockInTheUserBitsDoesNotChangeTheLabel();
    void aRunningPartBehindAPauseIsNotExtrapolatedThroughIt();
    void aLongRecordingIsNotCountedBackThroughOtherLabels_data();
    void aLongRecordingIsNotCountedBackThroughOtherLabels();
    void aLateBeginningIsReadThroughSilence();
    void shortRecordingsGiveFiniteNumbers();
    void theRateClassIsOnlyAnsweredWhenItIsProven();
    void aLabelRepeatedOnceASecondMakesNoOtherRate();
    void cleanFramesAloneDoNotGiveTheRateOfTheRest();
    void aChannelOfAnotherRateDoesNotHideTheOneAskedFor();
};

namespace
{

std::vector<float> recording(const LabelAt &labelAt, LtcRate rate, double seconds, double noise,
                             std::uint64_t seed = 1)
{
    LtcSignal signal;
    signal.start = start;
    signal.rate = rate;
    signal.duration = seconds;
    signal.offset = 0.3;
    std::vector<float> samples = testsignals::biphaseMarkAudio(signal, {}, [&](std::int64_t index) {
        return testsignals::frameBits(labelAt(index, rate), rate, 0x12345678U);
    });
    testsignals::Random random(seed);
    testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), noise);
    return samples;
}

Outcome outcomeOf(const std::vector<float> &samples, const Settings &settings = {})
{
    MemorySource source(samples, 1, 48000);
    return examine(source, settings);
}

constexpr LtcRate pal{25, false, false};
constexpr LtcRate dropFrame{30, true, true};
constexpr LtcRate ntsc{30, true, false};

} // namespace

void TestOddLabels::labelsThatDoNotCountUpAreRefused_data()
{
    QTest::addColumn<LabelAt>("labelAt");
    QTest::addColumn<LtcRate>("rate");
    const LabelAt held = [](std::int64_t index, LtcRate rate) { return counting(start, index / 2, rate); };
    const LabelAt frozen = [](std::int64_t, LtcRate) { return start; };
    const LabelAt down = [](std::int64_t index, LtcRate rate) { return counting(start, -index, rate); };
    const LabelAt fast = [](std::int64_t index, LtcRate rate) { return counting(start, 2 * index, rate); };
    QTest::newRow("each label held for two frames") << held << pal;
    QTest::newRow("frozen") << frozen << pal;
    QTest::newRow("counting down") << down << pal;
    QTest::newRow("every second label") << fast << pal;
    QTest::newRow("hour 27") << LabelAt(illegalHour) << pal;
    QTest::newRow("seconds from 60 on") << LabelAt(illegalSecond) << pal;
    QTest::newRow("drop-frame flag, no labels left out") << LabelAt(countingWithoutDrops) << dropFrame;
}

void TestOddLabels::labelsThatDoNotCountUpAreRefused()
{
    QFETCH(LabelAt, labelAt);
    QFETCH(LtcRate, rate);
    for (const double seconds : {0.3, 1.0, 3.0}) {
        for (const double noise : {60.0, 30.0, 3.0, -9.0}) {
            const Outcome outcome = outcomeOf(recording(labelAt, rate, seconds, noise));
            const bool flagMatters = rate.dropFrame && seconds < 0.5; // the minute is full after 0.3 s
            QVERIFY2(outcome.doubt != Doubt::None || flagMatters,
                     qPrintable(QStringLiteral("%1 s, noise %2 dB").arg(seconds).arg(noise)));
        }
    }
}

void TestOddLabels::theReasonIsNamed_data()
{
    QTest::addColumn<LabelAt>("labelAt");
    QTest::addColumn<Doubt>("doubt");
    const auto row = [](const char *name, const LabelAt &labelAt, Doubt doubt) {
        QTest::newRow(name) << labelAt << doubt;
    };
    row(
        "ordinary", [](std::int64_t index, LtcRate rate) { return counting(start, index, rate); },
        Doubt::None);
    row(
        "held", [](std::int64_t index, LtcRate rate) { return counting(start, index / 2, rate); },
        Doubt::Held);
    row(
        "frozen", [](std::int64_t, LtcRate) { return start; }, Doubt::Frozen);
    row(
        "down", [](std::int64_t index, LtcRate rate) { return counting(start, -index, rate); },
        Doubt::CountingDown);
    row("hour 27", illegalHour, Doubt::IllegalLabels);
}

void TestOddLabels::theReasonIsNamed()
{
    QFETCH(LabelAt, labelAt);
    QFETCH(Doubt, doubt);
    QCOMPARE(static_cast<int>(outcomeOf(recording(labelAt, pal, 3.0, 40.0)).doubt), static_cast<int>(doubt));
}

void TestOddLabels::aJumpInNoiseIsNeverAnsweredWithTheLaterLine()
{
    for (const int jumpAt : {8, 20, 37}) {
        for (const double noise : {8.0, 0.0, -9.0}) {
            const Outcome outcome = outcomeOf(recording(
                [jumpAt](std::int64_t index, LtcRate rate) {
                    return counting(index < jumpAt ? start : later, index, rate);
                },
                pal, 3.0, noise));
            const bool first =
                outcome.likeliest && outcome.likeliest->start == timecode::Label{10, 20, 30, 12};
            QVERIFY2(outcome.doubt != Doubt::None || first,
                     qPrintable(QStringLiteral("jump at frame %1, noise %2 dB").arg(jumpAt).arg(noise)));
        }
    }
}

void TestOddLabels::anEarlyJumpThatSingleFramesShowIsNotOverruled()
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        std::vector<float> samples = recording(
            [](std::int64_t index, LtcRate rate) {
                LtcTime label = counting(start, index, rate);
                label.hours += index < 4 ? 0 : 1;
                return label;
            },
            ntsc, 1.0, 60.0);
        testsignals::Random random(seed);
        testsignals::addAtRatio(samples, testsignals::musicLike(random, samples.size(), 48000), 0.0);
        const Outcome outcome = outcomeOf(samples);
        const bool first = outcome.likeliest && outcome.likeliest->start == timecode::Label{10, 20, 30, 12};
        QVERIFY2(outcome.doubt != Doubt::None || first, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void TestOddLabels::sevenCleanFramesBeforeAJumpAreRead()
{
    const Outcome outcome = outcomeOf(recording(
        [](std::int64_t index, LtcRate rate) { return counting(index < 8 ? start : later, index, rate); },
        pal, 3.0, 20.0));
    QCOMPARE(static_cast<int>(outcome.doubt), static_cast<int>(Doubt::None));
    QVERIFY((outcome.likeliest->start == timecode::Label{10, 20, 30, 12}));
}

void TestOddLabels::sevenCleanFramesBeforeASkipAreNot()
{
    // They may be of a way of counting whose second is full there.
    const Outcome outcome = outcomeOf(recording(
        [](std::int64_t index, LtcRate rate) { return counting(start, index + (index < 8 ? 0 : 5), rate); },
        pal, 3.0, 20.0));
    QVERIFY(outcome.doubt != Doubt::None);
}

void TestOddLabels::aClockInTheUserBitsDoesNotChangeTheLabel()
{
    for (const double noise : {9.0, 0.0, -9.0}) {
        LtcSignal signal;
        signal.start = start;
        std::vector<float> samples = testsignals::biphaseMarkAudio(signal, {}, [&](std::int64_t index) {
            const LtcTime label = counting(start, index, pal);
            const auto clock = static_cast<std::uint32_t>(label.seconds % 10 << 4 | label.seconds / 10);
            return testsignals::frameBits(label, pal, 0x17450000U | clock);
        });
        testsignals::Random random(7);
        testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), noise);
        const Outcome outcome = outcomeOf(samples);
        const bool right = outcome.likeliest && outcome.likeliest->start == timecode::Label{10, 20, 30, 12};
        QVERIFY2(outcome.doubt != Doubt::None || right, qPrintable(QStringLiteral("noise %1 dB").arg(noise)));
    }
}

void TestOddLabels::aRunningPartBehindAPauseIsNotExtrapolatedThroughIt()
{
    for (const double noise : {60.0, 9.0, -6.0}) {
        const Outcome outcome = outcomeOf(recording(
            [](std::int64_t index, LtcRate rate) {
                return counting(start, std::max<std::int64_t>(0, index - 20), rate);
            },
            pal, 3.0, noise));
        QVERIFY2(outcome.doubt != Doubt::None, qPrintable(QStringLiteral("noise %1 dB").arg(noise)));
    }
}

void TestOddLabels::aLongRecordingIsNotCountedBackThroughOtherLabels_data()
{
    QTest::addColumn<LabelAt>("labelAt");
    QTest::addColumn<Doubt>("doubt");
    constexpr std::int64_t change = 100; // frames, 4 s: behind the first window
    const auto row = [](const char *name, const LabelAt &before, Doubt doubt) {
        const LabelAt labelAt = [before](std::int64_t index, LtcRate rate) {
            return index < change ? before(index, rate) : counting(start, index, rate);
        };
        QTest::newRow(name) << labelAt << doubt;
    };
    row(
        "frozen", [](std::int64_t, LtcRate) { return start; }, Doubt::Frozen);
    row(
        "held", [](std::int64_t index, LtcRate rate) { return counting(start, index / 2, rate); },
        Doubt::Held);
    row(
        "down", [](std::int64_t index, LtcRate rate) { return counting(start, -index, rate); },
        Doubt::CountingDown);
    row("hour 27", illegalHour, Doubt::IllegalLabels);
}

void TestOddLabels::aLongRecordingIsNotCountedBackThroughOtherLabels()
{
    QFETCH(LabelAt, labelAt);
    QFETCH(Doubt, doubt);
    QCOMPARE(static_cast<int>(outcomeOf(recording(labelAt, pal, 12.0, 40.0)).doubt), static_cast<int>(doubt));
}

void TestOddLabels::aLateBeginningIsReadThroughSilence()
{
    constexpr std::ptrdiff_t silent = 72000; // samples, 1.5 s
    const std::vector<float> whole = recording(
        [](std::int64_t index, LtcRate rate) { return counting(start, index, rate); }, pal, 3.0, 60.0);
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        std::vector<float> samples = whole;
        std::fill_n(samples.begin(), silent, 0.0F);
        testsignals::Random random(seed);
        testsignals::addAtRatio(samples, testsignals::whiteNoise(random, samples.size()), 20.0);
        const Outcome outcome = outcomeOf(samples);
        QVERIFY2(outcome.doubt == Doubt::None, qPrintable(QStringLiteral("seed %1").arg(seed)));
        QVERIFY(outcome.likeliest->start == (timecode::Label{10, 20, 30, 12}));
    }
}

void TestOddLabels::shortRecordingsGiveFiniteNumbers()
{
    int answers = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        const double seconds = 0.1 + 0.0015 * static_cast<double>(seed);
        const double noise = 6.0 - 0.2 * static_cast<double>(seed);
        const LabelAt ordinary = [](std::int64_t index, LtcRate rate) {
            return counting(start, index, rate);
        };
        const Outcome outcome = outcomeOf(recording(ordinary, pal, seconds, noise, seed));
        if (!outcome.likeliest)
            continue;
        const Reading &reading = *outcome.likeliest;
        QVERIFY(std::isfinite(reading.measuredRate) && std::isfinite(reading.rateError));
        QVERIFY(std::isfinite(reading.phase) && std::isfinite(reading.level));
        QVERIFY(std::abs(reading.measuredRate / 25.0 - 1.0) < 0.15);
        QVERIFY(reading.samplesSinceMidnight >= 0 && reading.samplesSinceMidnight < 86400LL * 48000);
        answers += outcome.doubt == Doubt::None ? 1 : 0;
    }
    QVERIFY(answers > 0);
}

void TestOddLabels::theRateClassIsOnlyAnsweredWhenItIsProven()
{
    const LabelAt ordinary = [](std::int64_t index, LtcRate rate) { return counting(start, index, rate); };
    QCOMPARE(static_cast<int>(outcomeOf(recording(ordinary, ntsc, 3.0, 10.0)).doubt),
             static_cast<int>(Doubt::None));
    int unproven = 0;
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        const std::vector<float> shortOne = recording(ordinary, ntsc, 0.15, -3.0, seed);
        const Outcome outcome = outcomeOf(shortOne);
        QVERIFY(outcome.doubt != Doubt::None || outcome.likeliest->ntsc);
        if (outcome.doubt != Doubt::RateClass)
            continue;
        ++unproven;
        Settings named;
        named.frameRate = 29.97;
        QCOMPARE(static_cast<int>(outcomeOf(shortOne, named).doubt), static_cast<int>(Doubt::None));
    }
    QVERIFY(unproven > 0);
    // Labels at exactly 30 frames per second with the flag of 29.97.
    const std::vector<float> flagged = [] {
        LtcSignal signal;
        signal.start = start;
        signal.rate = {30, false, false};
        return testsignals::biphaseMarkAudio(signal, {}, [](std::int64_t index) {
            return testsignals::frameBits(counting(start, index, {30, false, false}), dropFrame, 0);
        });
    }();
    QCOMPARE(static_cast<int>(outcomeOf(flagged).doubt), static_cast<int>(Doubt::FalseFlag));
}

void TestOddLabels::aLabelRepeatedOnceASecondMakesNoOtherRate()
{
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        const Outcome outcome = outcomeOf(recording(
            [](std::int64_t index, LtcRate rate) { return counting(start, index - (index + 13) / 25, rate); },
            {24, true, false}, 3.0, -10.0, seed));
        QVERIFY2(outcome.doubt != Doubt::None || outcome.likeliest->baseRate == 24,
                 qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void TestOddLabels::cleanFramesAloneDoNotGiveTheRateOfTheRest()
{
    constexpr std::ptrdiff_t clean = 9600;
    const std::vector<float> quiet =
        recording([](std::int64_t index, LtcRate) { return counting(start, index, pal); }, {24, true, false},
                  1.0, 60.0);
    for (std::uint64_t seed = 1; seed <= 5; ++seed) {
        std::vector<float> samples = quiet;
        std::vector<float> rest(quiet.begin() + clean, quiet.end());
        testsignals::Random random(seed);
        testsignals::addAtRatio(rest, testsignals::whiteNoise(random, rest.size()), 0.0);
        std::copy(rest.begin(), rest.end(), samples.begin() + clean);
        const Outcome outcome = outcomeOf(samples);
        QVERIFY2(outcome.doubt != Doubt::None || outcome.likeliest->baseRate == 25,
                 qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void TestOddLabels::aChannelOfAnotherRateDoesNotHideTheOneAskedFor()
{
    const LabelAt ordinary = [](std::int64_t index, LtcRate rate) { return counting(start, index, rate); };
    const std::vector<float> whole = recording(ordinary, {30, false, false}, 3.0, -6.0);
    const std::vector<float> wanted = recording(ordinary, ntsc, 3.0, -6.0, 2);
    std::vector<float> interleaved;
    for (std::size_t i = 0; i < std::min(whole.size(), wanted.size()); ++i) {
        interleaved.push_back(whole[i]);
        interleaved.push_back(wanted[i]);
    }
    MemorySource source(interleaved, 2, 48000);
    Settings settings;
    settings.frameRate = 29.97;
    const auto reading = readTimecode(source, settings);
    QVERIFY(reading);
    QCOMPARE(reading->channel, 1);
}

QTEST_APPLESS_MAIN(TestOddLabels)
#include "tst_oddlabels.moc"

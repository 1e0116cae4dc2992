// SPDX-License-Identifier: MIT
#include "ltcreader/decision/digitdecision.h"
#include "ltcreader/decision/labeldecision.h"
#include "ltcreader/decision/remodulator.h"
#include "ltcreader/frontend/decisiondirected.h"
#include "tests/ltcreader/timecodegrid.h"

#include <QTest>

#include <algorithm>
#include <bit>
#include <random>

using namespace ltcreader;

Q_DECLARE_METATYPE(timecode::Label)
Q_DECLARE_METATYPE(timecode::Rate)

namespace
{

constexpr double believedMargin = 10.0;
constexpr timecode::Rate pal{25, false, false};
constexpr timecode::Rate drop{30, true, true};
constexpr FrameBits allUserBits = 0xF0F0F0F0F0F0F0F0;

FrameBits standingUserBits(int)
{
    return 0x3010'5020'7090'10A0 & allUserBits;
}

FrameBits changingUserBits(int frame)
{
    std::mt19937_64 engine(static_cast<std::uint64_t>(frame));
    return engine() & allUserBits;
}

timecode::Label startOf(const LabelDecision &decision)
{
    return labelAt(decision.count, decision.rate);
}

QString text(const timecode::Label &label)
{
    return QString::fromStdString(toText(label, false));
}

} // namespace

class TestLabelDecision : public QObject
{
    Q_OBJECT

private slots:
    void everyLabelIsFound_data();
    void everyLabelIsFound();
    void changingUserBitsNeedADecisionByDigits();
    void noiseAloneDecidesNothing_data();
    void noiseAloneDecidesNothing();
    void digitsThatComeAsTheyLikeAreNoTimecode();
    void labelsThatNoClockShowsAreNoneOfTheirNeighbours_data();
    void labelsThatNoClockShowsAreNoneOfTheirNeighbours();
    void aBentSyncWordMisleadsNoFrame_data();
    void aBentSyncWordMisleadsNoFrame();
    void errorsThatBoundariesShareProveLess();
    void aLearningFilterRestoresWhatRunsTogether();
};

void TestLabelDecision::everyLabelIsFound_data()
{
    QTest::addColumn<timecode::Label>("start");
    QTest::addColumn<timecode::Rate>("rate");
    QTest::newRow("24") << timecode::Label{10, 11, 12, 13} << timecode::Rate{24, false, false};
    QTest::newRow("25") << timecode::Label{1, 2, 3, 4} << pal;
    QTest::newRow("30") << timecode::Label{23, 45, 6, 29} << timecode::Rate{30, false, false};
    QTest::newRow("drop-frame") << timecode::Label{12, 34, 56, 28} << drop;
    QTest::newRow("drop-frame, labels left out") << timecode::Label{12, 34, 58, 20} << drop;
    QTest::newRow("drop-frame, tenth minute") << timecode::Label{12, 39, 58, 20} << drop;
    QTest::newRow("a full minute") << timecode::Label{12, 34, 58, 20} << pal;
    QTest::newRow("a full hour") << timecode::Label{12, 59, 59, 0} << pal;
    QTest::newRow("midnight") << timecode::Label{23, 59, 58, 10} << pal;
}

void TestLabelDecision::everyLabelIsFound()
{
    QFETCH(timecode::Label, start);
    QFETCH(timecode::Rate, rate);
    FrameGrid grid = gridOfTimecode(start, rate, 75, standingUserBits);
    addNoise(grid, 1.5);
    for (const auto decideOn : {decideTimecode, decideByDigits}) {
        const auto decision = decideOn(grid, rate.framesPerSecond());
        QVERIFY(decision);
        QCOMPARE(text(startOf(*decision)), text(start));
        QCOMPARE(decision->rate.base, rate.base);
        QCOMPARE(decision->rate.dropFrame, rate.dropFrame);
        QVERIFY2(decision->margin > believedMargin, qPrintable(QString::number(decision->margin)));
    }
}

void TestLabelDecision::changingUserBitsNeedADecisionByDigits()
{
    const timecode::Label start{7, 8, 9, 10};
    FrameGrid grid = gridOfTimecode(start, pal, 75, changingUserBits);
    addNoise(grid, 1.0);
    const auto together = decideTimecode(grid, 25.0);
    QVERIFY(!together || together->margin < believedMargin);
    const auto byDigits = decideByDigits(grid, 25.0);
    QVERIFY(byDigits);
    QCOMPARE(text(startOf(*byDigits)), text(start));
    QVERIFY2(byDigits->margin > believedMargin, qPrintable(QString::number(byDigits->margin)));
}

void TestLabelDecision::noiseAloneDecidesNothing_data()
{
    QTest::addColumn<int>("frames");
    QTest::newRow("3 s") << 75;
    QTest::newRow("0.2 s") << 5;
}

void TestLabelDecision::noiseAloneDecidesNothing()
{
    QFETCH(int, frames);
    FrameGrid grid = gridOfTimecode({1, 2, 3, 4}, pal, frames, standingUserBits);
    std::fill(grid.halves.begin(), grid.halves.end(), 0.0F);
    addNoise(grid, 100.0);
    for (const auto decideOn : {decideTimecode, decideByDigits}) {
        const auto decision = decideOn(grid, 25.0);
        QVERIFY(!decision || decision->margin < believedMargin);
    }
}

void TestLabelDecision::digitsThatComeAsTheyLikeAreNoTimecode()
{
    // Sync words are there, and each frame shows another time.
    FrameGrid grid;
    for (int frame = 0; frame < 75; ++frame) {
        const timecode::Label label = labelAt(std::int64_t{frame} * 1234567, pal);
        const FrameGrid single = gridOfTimecode(label, pal, 1, changingUserBits);
        grid.halves.insert(grid.halves.end(), single.halves.begin(), single.halves.end());
        ++grid.frames;
    }
    measureSyncs(grid);
    QVERIFY(!decideByDigits(grid, 25.0));
}

void TestLabelDecision::labelsThatNoClockShowsAreNoneOfTheirNeighbours_data()
{
    QTest::addColumn<timecode::Label>("neighbour");
    QTest::addColumn<FrameBits>("added");
    QTest::newRow("frame 30 and on") << timecode::Label{9, 45, 18, 20}
                                     << (FrameBits{1} << field::frameTens.first);
    QTest::newRow("second 62") << timecode::Label{9, 45, 42, 3} << (FrameBits{2} << field::secondTens.first);
    QTest::newRow("second 12 in one digit")
        << timecode::Label{9, 45, 4, 3} << (FrameBits{8} << field::secondUnits.first);
    QTest::newRow("minute 65") << timecode::Label{9, 45, 18, 3} << (FrameBits{2} << field::minuteTens.first);
    QTest::newRow("hour 28") << timecode::Label{20, 45, 18, 3} << (FrameBits{8} << field::hourUnits.first);
}

void TestLabelDecision::labelsThatNoClockShowsAreNoneOfTheirNeighbours()
{
    QFETCH(timecode::Label, neighbour);
    QFETCH(FrameBits, added);
    constexpr timecode::Rate rate{30, false, false};
    FrameGrid grid = gridOfTimecode(neighbour, rate, 8, [added](int) { return added; });
    addNoise(grid, 0.3);
    for (const auto decideOn : {decideTimecode, decideByDigits}) {
        const auto decision = decideOn(grid, rate.framesPerSecond());
        QVERIFY2(!decision || decision->margin < believedMargin,
                 decision ? qPrintable(text(startOf(*decision))) : "");
    }
}

void TestLabelDecision::aBentSyncWordMisleadsNoFrame_data()
{
    QTest::addColumn<int>("bentFrame");
    for (int frame = 0; frame < 5; ++frame)
        QTest::addRow("frame %d", frame) << frame;
}

void TestLabelDecision::aBentSyncWordMisleadsNoFrame()
{
    QFETCH(int, bentFrame);
    const timecode::Rate film{24, false, false};
    const timecode::Label start{15, 40, 1, 16};
    const auto withPhaseCorrection = [](int frame) { // all frames begin alike
        const int frames = 16 + frame;
        const int ones = std::popcount(static_cast<unsigned>(frames / 10 * 16 + frames % 10));
        return standingUserBits(frame) | FrameBits{ones % 2 != 0} << 27;
    };
    FrameGrid grid = gridOfTimecode(start, film, 5, withPhaseCorrection);
    addNoise(grid, 0.3);
    for (int half = dataHalves; half < halvesPerFrame; ++half)
        grid.halves[static_cast<std::size_t>(bentFrame * halvesPerFrame + half)] *= -0.3F;
    measureSyncs(grid);
    const auto decision = decideTimecode(grid, 24.0);
    QVERIFY(decision);
    QCOMPARE(text(startOf(*decision)), text(start));
    QVERIFY2(decision->margin > believedMargin, qPrintable(QString::number(decision->margin)));
}

void TestLabelDecision::errorsThatBoundariesShareProveLess()
{
    // Noise that is the same on both sides of a bit boundary, but for the sign that the levels have there,
    // moves the pair that separates a label from its nearest neighbour by twice as much.
    const FrameGrid clean = gridOfTimecode({7, 8, 9, 10}, pal, 75, standingUserBits);
    FrameGrid apart = clean;
    addNoise(apart, 1.0);
    FrameGrid shared = apart;
    for (std::size_t i = 1; i + 1 < clean.halves.size(); i += 2)
        shared.halves[i + 1] = shared.halves[i] * clean.halves[i] * clean.halves[i + 1];
    measureSyncs(shared);
    QVERIFY(std::abs(boundaryCorrelation(apart, clean.halves)) < 0.05);
    QVERIFY(boundaryCorrelation(shared, clean.halves) > 0.95);
    for (const auto decideOn : {decideTimecode, decideByDigits}) {
        const auto free = decideOn(apart, 25.0);
        const auto bound = decideOn(shared, 25.0);
        QVERIFY(free && bound);
        const QString margins = QString("%1 and %2").arg(free->margin).arg(bound->margin);
        QVERIFY2(bound->margin < 0.7 * free->margin, qPrintable(margins));
    }
}

void TestLabelDecision::aLearningFilterRestoresWhatRunsTogether()
{
    const timecode::Label start{7, 8, 9, 10};
    const FrameGrid clean = gridOfTimecode(start, pal, 75, standingUserBits);
    FrameGrid blurred = clean;
    for (std::size_t i = 1; i < clean.halves.size(); ++i)
        blurred.halves[i] = clean.halves[i] + 0.8F * clean.halves[i - 1];
    addNoise(blurred, 0.1);
    const auto before = decideTimecode(blurred, 25.0);
    QVERIFY(before);
    QVERIFY(before->repetition > 2.0);
    FrameGrid straight = blurred;
    straight.halves = equaliseByDecision(blurred.halves, before->levels);
    measureSyncs(straight);
    const auto after = decideTimecode(straight, 25.0);
    QVERIFY(after);
    QCOMPARE(text(startOf(*after)), text(start));
    QVERIFY2(after->margin > 2.0 * before->margin,
             qPrintable(QString("%1 before, %2 after").arg(before->margin).arg(after->margin)));
}

QTEST_APPLESS_MAIN(TestLabelDecision)

#include "tst_labeldecision.moc"

// SPDX-License-Identifier: MIT
#include "ltcreader/frontend/prewhitener.h"
#include "ltcreader/verification/beginning.h"
#include "ltcreader/verification/linecheck.h"
#include "ltcreader/verification/strength.h"
#include "tests/ltcreader/timecodegrid.h"

#include <QTest>

#include <algorithm>

using namespace ltcreader;

Q_DECLARE_METATYPE(timecode::Label)
Q_DECLARE_METATYPE(ltcreader::FrameGrid)

class TestLineCheck : public QObject
{
    Q_OBJECT

private slots:
    void aLineThatRunsThroughIsNotDoubted_data();
    void aLineThatRunsThroughIsNotDoubted();
    void otherLabelsAreSeen_data();
    void otherLabelsAreSeen();
    void likelyJumpsNeedFewFrames_data();
    void likelyJumpsNeedFewFrames();
    void aDigitShowsInAllThatFollowsIt();
    void oneNoisyFrameIsNoJump();
    void errorsOfEveryFrameAreNoJump();
    void framesWithoutTimecodeSayNothing();
    void lateTimecodeBeginsWithItsFirstWholeFrame_data();
    void lateTimecodeBeginsWithItsFirstWholeFrame();
    void louderSoundHidesABeginning();
};

namespace
{

constexpr timecode::Rate pal{25, false, false};
constexpr timecode::Label start{10, 20, 30, 12};
constexpr int frames = 75;

FrameBits noUserBits(int)
{
    return 0;
}

FrameGrid gridFrom(const timecode::Label &label)
{
    return gridOfTimecode(label, pal, frames, noUserBits);
}

/// \a grid, of which frames from \a from on are those of \a other.
FrameGrid spliced(FrameGrid grid, const FrameGrid &other, int from)
{
    const auto place = static_cast<std::ptrdiff_t>(from) * halvesPerFrame;
    std::copy(other.halves.begin() + place, other.halves.end(), grid.halves.begin() + place);
    measureSyncs(grid);
    return grid;
}

/// Frame number \a first of \a grid in all frames.
FrameGrid frozen(FrameGrid grid)
{
    for (int frame = 1; frame < frames; ++frame)
        std::copy_n(grid.halves.begin(), halvesPerFrame,
                    grid.halves.begin() + std::ptrdiff_t{frame} * halvesPerFrame);
    measureSyncs(grid);
    return grid;
}

constexpr double frameLength = 1920.0; // [samples]

Doubt doubtAbout(FrameGrid grid, double noise, const timecode::Label &label = start,
                 const std::vector<float> &samples = {})
{
    addNoise(grid, noise);
    measureSyncs(grid);
    return doubtAboutLine({pal, frameCount(label, pal)}, grid, {}, samples, frameLength);
}

} // namespace

void TestLineCheck::aLineThatRunsThroughIsNotDoubted_data()
{
    QTest::addColumn<double>("noise");   // of a half bit, whose timecode is 1
    QTest::addColumn<bool>("isDecided"); // all half bits, else digits and sync words only
    QTest::newRow("clean") << 0.0 << false;
    QTest::newRow("as strong as the timecode") << 1.0 << false;
    QTest::newRow("half as strong again") << 1.5 << false;
    QTest::newRow("twice as strong, user bits known") << 2.0 << true;
}

void TestLineCheck::aLineThatRunsThroughIsNotDoubted()
{
    QFETCH(double, noise);
    QFETCH(bool, isDecided);
    FrameGrid grid = gridFrom(start);
    const std::vector<float> levels = isDecided ? grid.halves : std::vector<float>();
    addNoise(grid, noise);
    measureSyncs(grid);
    const Doubt doubt = doubtAboutLine({pal, frameCount(start, pal)}, grid, levels, {}, frameLength);
    QCOMPARE(static_cast<int>(doubt), static_cast<int>(Doubt::None));
}

void TestLineCheck::otherLabelsAreSeen_data()
{
    QTest::addColumn<FrameGrid>("grid");
    QTest::addColumn<int>("doubt");
    const FrameGrid line = gridFrom(start);
    const auto row = [](const char *name, const FrameGrid &grid, Doubt doubt) {
        QTest::newRow(name) << grid << static_cast<int>(doubt);
    };
    row("another minute", gridFrom({10, 21, 30, 12}), Doubt::TooNoisy);
    row("another second", gridFrom({10, 20, 31, 12}), Doubt::TooNoisy);
    row("one frame on", gridFrom({10, 20, 30, 13}), Doubt::TooNoisy);
    row("frozen", frozen(line), Doubt::Frozen);
    row("a jump after ten frames", spliced(gridFrom({4, 5, 6, 7}), line, 10), Doubt::Jump);
    row("a jump by an hour", spliced(gridFrom({11, 20, 30, 12}), line, 20), Doubt::Jump);
    row("a jump by a frame", spliced(gridFrom({10, 20, 30, 11}), line, 20), Doubt::Jump);
    row("a jump near the end", spliced(line, gridFrom({4, 5, 6, 7}), 65), Doubt::Jump);
}

void TestLineCheck::otherLabelsAreSeen()
{
    QFETCH(FrameGrid, grid);
    QFETCH(int, doubt);
    QCOMPARE(static_cast<int>(doubtAbout(grid, 0.0)), doubt);
    QVERIFY(doubtAbout(grid, 1.0) != Doubt::None);
}

void TestLineCheck::likelyJumpsNeedFewFrames_data()
{
    QTest::addColumn<timecode::Label>("before");
    QTest::newRow("an hour later") << timecode::Label{9, 20, 30, 12};
    QTest::newRow("an hour earlier") << timecode::Label{11, 20, 30, 12};
    QTest::newRow("a minute earlier") << timecode::Label{10, 21, 30, 12};
    QTest::newRow("a second earlier") << timecode::Label{10, 20, 31, 12};
    QTest::newRow("a frame earlier") << timecode::Label{10, 20, 30, 13};
}

void TestLineCheck::likelyJumpsNeedFewFrames()
{
    QFETCH(timecode::Label, before);
    constexpr int frameCounts[] = {5, 6, 7};
    for (const int count : frameCounts)
        QVERIFY(doubtAbout(spliced(gridFrom(before), gridFrom(start), count), 1.0) != Doubt::None);
}

void TestLineCheck::aDigitShowsInAllThatFollowsIt()
{
    // Hours 10 and 11 differ in one bit, behind which the polarity is another up to the phase correction bit.
    const FrameGrid line = gridFrom(start);
    FrameGrid jumping = spliced(gridFrom({11, 20, 30, 12}), line, 4);
    addNoise(jumping, 2.0);
    measureSyncs(jumping);
    const Doubt doubt = doubtAboutLine({pal, frameCount(start, pal)}, jumping, line.halves, {}, frameLength);
    QCOMPARE(static_cast<int>(doubt), static_cast<int>(Doubt::Jump));
}

void TestLineCheck::oneNoisyFrameIsNoJump()
{
    constexpr timecode::Rate ntsc{30, true, false};
    constexpr int cut = 80;              // halves of frame 0 that the recording lacks
    constexpr std::size_t flagHalf = 21; // the one in which a drop-frame flag would show
    FrameGrid grid = gridOfTimecode(start, ntsc, frames, noUserBits);
    addNoise(grid, 0.4);
    std::fill_n(grid.halves.begin(), cut, 0.0F);
    grid.firstHalf = -cut;
    float &half = grid.halves[halvesPerFrame + flagHalf];
    half = half > 0.0F ? 0.1F : 1.4F;
    measureSyncs(grid);
    const Doubt doubt = doubtAboutLine({ntsc, frameCount(start, ntsc)}, grid, {}, {}, frameLength);
    QCOMPARE(static_cast<int>(doubt), static_cast<int>(Doubt::None));
}

void TestLineCheck::errorsOfEveryFrameAreNoJump()
{
    FrameGrid grid = gridFrom(start);
    const std::vector<float> levels = grid.halves;
    // What a steep high-pass filter leaves of each half bit.
    for (std::size_t half = 1; half < grid.halves.size(); ++half)
        grid.halves[half] *= levels[half] == levels[half - 1] ? 0.1F : 1.4F;
    FrameGrid jumping = spliced(gridFrom({11, 20, 30, 12}), grid, 20);
    for (FrameGrid *distorted : {&grid, &jumping}) {
        addNoise(*distorted, 0.5);
        measureSyncs(*distorted);
    }
    const LabelLine line{pal, frameCount(start, pal)};
    QCOMPARE(static_cast<int>(doubtAboutLine(line, grid, levels, {}, frameLength)),
             static_cast<int>(Doubt::None));
    QCOMPARE(static_cast<int>(doubtAboutLine(line, jumping, levels, {}, frameLength)),
             static_cast<int>(Doubt::Jump));
}

void TestLineCheck::framesWithoutTimecodeSayNothing()
{
    FrameGrid grid = gridFrom(start);
    std::fill_n(grid.halves.begin(), 20 * halvesPerFrame, 0.0F);
    measureSyncs(grid);
    QCOMPARE(static_cast<int>(doubtAbout(grid, 0.3)), static_cast<int>(Doubt::None));
}

void TestLineCheck::lateTimecodeBeginsWithItsFirstWholeFrame_data()
{
    QTest::addColumn<int>("silent"); // [frames]
    QTest::addColumn<int>("first");
    QTest::newRow("at once") << 0 << 0;
    QTest::newRow("early") << 10 << 11; // the one before may be cut
    QTest::newRow("in the last third") << 50 << 51;
    QTest::newRow("near the end") << 70 << 71;
}

void TestLineCheck::lateTimecodeBeginsWithItsFirstWholeFrame()
{
    QFETCH(int, silent);
    FrameGrid grid = gridFrom(start);
    std::fill_n(grid.halves.begin(), silent * halvesPerFrame, 0.0F);
    addNoise(grid, 0.1);
    QTEST(firstWholeFrame(grid), "first");
}

void TestLineCheck::louderSoundHidesABeginning()
{
    constexpr auto hidden = std::ptrdiff_t{20} * halvesPerFrame;
    FrameGrid grid = gridFrom(start);
    std::fill_n(grid.halves.begin(), hidden, 0.0F);
    measureSyncs(grid);
    std::vector<float> samples(static_cast<std::size_t>(frames * frameLength));
    for (std::size_t i = 0; i < samples.size(); i += 2)
        samples[i] = 0.5F;
    QCOMPARE(static_cast<int>(doubtAbout(grid, 0.3, start, samples)), static_cast<int>(Doubt::Jump));
    std::fill_n(samples.begin(), static_cast<std::ptrdiff_t>(20 * frameLength), 0.0F);
    QCOMPARE(static_cast<int>(doubtAbout(grid, 0.3, start, samples)), static_cast<int>(Doubt::None));
}

QTEST_APPLESS_MAIN(TestLineCheck)
#include "tst_linecheck.moc"

// SPDX-License-Identifier: MIT
#include "ltcreader/sync/framesync.h"
#include "tests/ltcreader/timecodegrid.h"

#include <QTest>

using namespace ltcreader;

namespace
{

constexpr int frames = 25;

FrameGrid timecodeGrid()
{
    return gridOfTimecode({10, 11, 12, 13}, {25, false, false}, frames, [](int) { return FrameBits{0}; });
}

double peakToSidelobes(const FrameGrid &grid)
{
    return grid.score / grid.sidelobes;
}

} // namespace

class TestFrameSync : public QObject
{
    Q_OBJECT

private slots:
    void framesAreFoundWhereTheyBegin_data();
    void framesAreFoundWhereTheyBegin();
    void timecodeStandsOutOfItsSidelobes();
    void aToneDoesNot();
    void fewHalfBitsHoldNoFrame();
};

void TestFrameSync::framesAreFoundWhereTheyBegin_data()
{
    QTest::addColumn<int>("cut");
    QTest::newRow("whole frames") << 0;
    QTest::newRow("the first bit is missing") << 2;
    QTest::newRow("only a sync word is left") << dataHalves;
    QTest::newRow("most of a sync word is missing") << halvesPerFrame - 2;
}

void TestFrameSync::framesAreFoundWhereTheyBegin()
{
    QFETCH(int, cut);
    const FrameGrid whole = timecodeGrid();
    const FrameGrid found = findFrames({whole.halves.begin() + cut, whole.halves.end()});
    QCOMPARE(found.firstHalf, -cut);
    QCOMPARE(found.frames, frames);
    QVERIFY(found.score > 20.0);
}

void TestFrameSync::timecodeStandsOutOfItsSidelobes()
{
    QVERIFY(peakToSidelobes(findFrames(timecodeGrid().halves)) > 3.0);
    FrameGrid noisy = timecodeGrid();
    addNoise(noisy, 2.0);
    QVERIFY(peakToSidelobes(findFrames(noisy.halves)) > 3.0);
}

void TestFrameSync::aToneDoesNot()
{
    std::vector<float> zeros; // what a tone of half the bit rate looks like
    for (int bit = 0; bit < frames * bitsPerFrame; ++bit)
        zeros.insert(zeros.end(), 2, bit % 2 == 0 ? 1.0F : -1.0F);
    const FrameGrid found = findFrames(zeros);
    QVERIFY(found.score > 5.0);
    QVERIFY2(peakToSidelobes(found) < 1.5, qPrintable(QString::number(peakToSidelobes(found))));
}

void TestFrameSync::fewHalfBitsHoldNoFrame()
{
    QCOMPARE(findFrames(std::vector<float>(31, 1.0F)).frames, 0);
}

QTEST_APPLESS_MAIN(TestFrameSync)

#include "tst_framesync.moc"

// SPDX-License-Identifier: MIT
#include "ltcreader/decision/viterbi.h"

#include <QTest>

#include <vector>

using namespace ltcreader;

namespace
{

/// Half bits of the lowest \a width bits of \a value, the first one at \a level.
std::vector<float> halvesOf(unsigned value, int width, float level)
{
    std::vector<float> halves;
    for (int bit = 0; bit < width; ++bit) {
        const bool one = (value >> bit & 1U) != 0;
        halves.push_back(level);
        halves.push_back(one ? -level : level);
        level = one ? level : -level;
    }
    return halves;
}

constexpr BitField wholeNumber{0, 4};

} // namespace

class TestViterbi : public QObject
{
    Q_OBJECT

private slots:
    void zerosTurnThePolarity_data();
    void zerosTurnThePolarity();
    void aNumberResemblesItselfMost_data();
    void aNumberResemblesItselfMost();
    void freeBitsAreFound_data();
    void freeBitsAreFound();
    void onlyAllowedNumbersAreFound_data();
    void onlyAllowedNumbersAreFound();
    void aWeakWrongHalfBitDoesNotMatter();
};

void TestViterbi::zerosTurnThePolarity_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("width");
    QTest::addColumn<float>("polarity");
    QTest::newRow("all ones") << 15 << 4 << 1.0F;
    QTest::newRow("one zero") << 7 << 4 << -1.0F;
    QTest::newRow("two zeros") << 5 << 4 << 1.0F;
    QTest::newRow("no bits") << 0 << 0 << 1.0F;
    QTest::newRow("three zeros") << 0 << 3 << -1.0F;
}

void TestViterbi::zerosTurnThePolarity()
{
    QFETCH(int, value);
    QFETCH(int, width);
    QFETCH(float, polarity);
    QCOMPARE(polarityAfter(value, width), polarity);
}

void TestViterbi::aNumberResemblesItselfMost_data()
{
    QTest::addColumn<int>("value");
    for (int value = 0; value < 16; ++value)
        QTest::newRow(qPrintable(QString::number(value))) << value;
}

void TestViterbi::aNumberResemblesItselfMost()
{
    QFETCH(int, value);
    const std::vector<float> halves = halvesOf(static_cast<unsigned>(value), 4, 1.0F);
    QCOMPARE(correlation(halves.data(), value, 4), 8.0F);
    for (int other = 0; other < 16; ++other)
        QVERIFY(other == value || correlation(halves.data(), other, 4) < 8.0F);
    const std::vector<float> turned = halvesOf(static_cast<unsigned>(value), 4, -1.0F);
    QCOMPARE(correlation(turned.data(), value, 4), -8.0F);
}

void TestViterbi::freeBitsAreFound_data()
{
    QTest::addColumn<bool>("anchored");
    QTest::addColumn<float>("level");
    QTest::newRow("begins high, known") << true << 1.0F;
    QTest::newRow("begins high, not known") << false << 1.0F;
    QTest::newRow("begins low, not known") << false << -1.0F;
}

void TestViterbi::freeBitsAreFound()
{
    QFETCH(bool, anchored);
    QFETCH(float, level);
    constexpr unsigned bits = 0b1011000101;
    constexpr int width = 10;
    const std::vector<float> halves = halvesOf(bits, width, level);
    Viterbi trellis(anchored);
    for (int bit = 0; bit < width; ++bit)
        trellis.free(bit, halves.data() + std::ptrdiff_t{2} * bit);
    QCOMPARE(trellis.bits(false), FrameBits{bits});
    QCOMPARE(trellis.fit(false), 2.0F * width);
}

void TestViterbi::onlyAllowedNumbersAreFound_data()
{
    QTest::addColumn<uint>("allowed");
    QTest::addColumn<uint>("found");
    QTest::newRow("the one that is there") << 0x3FFU << 6U;
    QTest::newRow("all but that") << (1U << 2U | 1U << 9U) << 2U;
}

void TestViterbi::onlyAllowedNumbersAreFound()
{
    QFETCH(uint, allowed);
    QFETCH(uint, found);
    const std::vector<float> halves = halvesOf(6, 4, 1.0F);
    Viterbi trellis(true);
    trellis.number(wholeNumber, halves.data(), allowed);
    QCOMPARE(trellis.bits(false), FrameBits{found});
}

void TestViterbi::aWeakWrongHalfBitDoesNotMatter()
{
    std::vector<float> halves = halvesOf(6, 4, 1.0F);
    halves[3] *= -0.2F;
    Viterbi trellis(true);
    trellis.number(wholeNumber, halves.data(), 0x3FF);
    QCOMPARE(trellis.bits(false), FrameBits{6});
}

QTEST_APPLESS_MAIN(TestViterbi)

#include "tst_viterbi.moc"

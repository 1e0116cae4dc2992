// SPDX-License-Identifier: MIT
#include "ltcreader/maths/fft.h"

#include <QTest>

#include <cmath>
#include <numbers>

using namespace ltcreader;

namespace
{

/// Values without any order in them, the same in every run.
Spectrum mixedValues(std::size_t size)
{
    Spectrum values(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double place = static_cast<double>(i);
        values[i] = {static_cast<float>(std::sin(place * place)),
                     static_cast<float>(std::cos(3.0 * place * place))};
    }
    return values;
}

/// Bin \a bin of the transform of \a values by its definition.
std::complex<double> binByDefinition(const Spectrum &values, std::size_t bin)
{
    std::complex<double> sum = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double turns = static_cast<double>(i * bin) / static_cast<double>(values.size());
        sum += std::complex<double>(values[i]) * std::polar(1.0, -2.0 * std::numbers::pi * turns);
    }
    return sum;
}

} // namespace

class TestFft : public QObject
{
    Q_OBJECT

private slots:
    void followsTheDefinition_data();
    void followsTheDefinition();
    void backwardUndoesForward_data();
    void backwardUndoesForward();
    void sizesAreRoundedUp_data();
    void sizesAreRoundedUp();
};

void TestFft::followsTheDefinition_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 2, 4, 8, 16, 32, 256, 512})
        QTest::newRow(qPrintable(QString("%1 values").arg(size))) << size;
}

void TestFft::followsTheDefinition()
{
    QFETCH(int, size);
    const Spectrum values = mixedValues(static_cast<std::size_t>(size));
    Spectrum spectrum = values;
    Fft::ofSize(values.size()).forward(spectrum);
    QCOMPARE(spectrum.size(), values.size());
    for (std::size_t bin = 0; bin < values.size(); ++bin) {
        const double error = std::abs(std::complex<double>(spectrum[bin]) - binByDefinition(values, bin));
        QVERIFY2(error < 1e-4 * size, qPrintable(QString("bin %1: %2").arg(bin).arg(error)));
    }
}

void TestFft::backwardUndoesForward_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("a power of four") << 4096;
    QTest::newRow("twice a power of four") << 8192;
}

void TestFft::backwardUndoesForward()
{
    QFETCH(int, size);
    const Spectrum values = mixedValues(static_cast<std::size_t>(size));
    Spectrum spectrum = values;
    Fft &fft = Fft::ofSize(values.size());
    fft.forward(spectrum);
    fft.backward(spectrum);
    for (std::size_t i = 0; i < values.size(); ++i)
        QVERIFY(std::abs(spectrum[i] / static_cast<float>(size) - values[i]) < 1e-4F);
}

void TestFft::sizesAreRoundedUp_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("size");
    QTest::newRow("nothing") << 0 << 1;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("a power of two stays") << 1024 << 1024;
    QTest::newRow("one more doubles") << 1025 << 2048;
}

void TestFft::sizesAreRoundedUp()
{
    QFETCH(int, count);
    QFETCH(int, size);
    QCOMPARE(powerOfTwoFrom(static_cast<std::size_t>(count)), static_cast<std::size_t>(size));
}

QTEST_APPLESS_MAIN(TestFft)

#include "tst_fft.moc"

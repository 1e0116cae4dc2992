// SPDX-License-Identifier: MIT
#include "ltcreader/frontend/decisiondirected.h"
#include "ltcreader/frontend/minimumphase.h"
#include "ltcreader/frontend/regularisedinverse.h"
#include "ltcreader/maths/toeplitz.h"
#include "tests/ltcreader/timecodegrid.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace ltcreader;

namespace
{

constexpr timecode::Rate pal{25, false, false};
constexpr double halfBit = 1.0 / 4000.0; // [s] at 25 frames a second

FrameBits noUserBits(int)
{
    return 0;
}

FrameGrid someTimecode()
{
    return gridOfTimecode({12, 34, 56, 7}, pal, 25, noUserBits);
}

/// How much \a values resemble \a levels, 0 to 1.
double correlation(const std::vector<float> &values, const std::vector<float> &levels)
{
    double products = 0.0;
    double squares = 0.0;
    double levelSquares = 0.0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        products += static_cast<double>(values[i] * levels[i]);
        squares += static_cast<double>(values[i] * values[i]);
        levelSquares += static_cast<double>(levels[i] * levels[i]);
    }
    return products / std::sqrt(squares * levelSquares);
}

/// Weights of frequencies that fall towards low ones below \a corner [Hz], the steeper the higher \a order
/// is.
std::vector<double> weightsFalling(double corner, double order)
{
    constexpr int steps = 321; // up to 8 kHz
    std::vector<double> weights{0.0};
    for (int step = 1; step < steps; ++step)
        weights.push_back(1.0 / (1.0 + std::pow(corner / (step * weightStep), order)));
    return weights;
}

/// \a levels after a filter with \a weights: what each half bit gets from its neighbours follows from them.
std::vector<float> filtered(const std::vector<float> &levels, const std::vector<double> &weights)
{
    constexpr std::size_t reach = 20;
    std::vector<double> response(reach + 1);
    for (std::size_t step = 1; step < weights.size(); ++step) {
        const double angle = std::numbers::pi * static_cast<double>(step) * weightStep * halfBit;
        const double shape = std::sin(angle) / angle;
        for (std::size_t lag = 0; lag <= reach; ++lag)
            response[lag] += weights[step] * shape * shape * std::cos(2.0 * angle * static_cast<double>(lag));
    }
    std::vector<float> result(levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        for (std::size_t j = i > reach ? i - reach : 0; j < std::min(levels.size(), i + reach + 1); ++j)
            result[i] += levels[j] * static_cast<float>(response[i > j ? i - j : j - i] / response[0]);
    }
    return result;
}

/// Power density of biphase mark code of random bits at 2150 bits a second, up to a factor.
double density(double frequency)
{
    const double angle = 0.5 * std::numbers::pi * frequency / 2150.0;
    const double shape = std::sin(angle) / angle;
    return shape * shape * std::sin(angle) * std::sin(angle);
}

} // namespace

/// What is done against filters in a recording's way.
class TestFilters : public QObject
{
    Q_OBJECT

private slots:
    void equationsAreSolved();
    void missingLowFrequenciesAreMadeUpFor_data();
    void missingLowFrequenciesAreMadeUpFor();
    void withoutWeightsHalfBitsStayAsTheyAre();
    void aFilterIsUndone_data();
    void aFilterIsUndone();
    void nothingIsRestoredFromNothing();
    void adaptationUndoesAnEcho();
    void adaptationKeepsWhatIsMissing();
};

void TestFilters::equationsAreSolved()
{
    const std::array<double, 3> diagonals{4.0, 1.0, 0.5};
    const std::array<double, 3> solution = solveToeplitz(diagonals, {6.0, 10.0, 6.0});
    const std::array<double, 3> expected{0.875, 2.0625, 0.875};
    for (std::size_t row = 0; row < solution.size(); ++row)
        QVERIFY(std::abs(solution[row] - expected[row]) < 1e-3);
}

void TestFilters::missingLowFrequenciesAreMadeUpFor_data()
{
    QTest::addColumn<double>("corner"); // [Hz]
    QTest::addColumn<double>("order");
    QTest::newRow("gently from 1 kHz on") << 1000.0 << 2.0;
    QTest::newRow("steeply from 2 kHz on") << 2000.0 << 4.0;
    QTest::newRow("next to nothing below 1.5 kHz") << 1500.0 << 40.0;
}

void TestFilters::missingLowFrequenciesAreMadeUpFor()
{
    QFETCH(double, corner);
    QFETCH(double, order);
    const std::vector<float> levels = someTimecode().halves;
    FilteredSound sound;
    sound.weights = weightsFalling(corner, order);
    const std::vector<float> bent = filtered(levels, sound.weights);
    const std::vector<float> straight = equaliseByInverse(bent, sound, halfBit);
    QCOMPARE(straight.size(), levels.size());
    const double before = correlation(bent, levels);
    const double after = correlation(straight, levels);
    QVERIFY2(1.0 - after < 0.2 * (1.0 - before),
             qPrintable(QString("%1 before, %2 after").arg(before).arg(after)));
    // Amplitudes are measured in half bits of mean square 1.
    const double power = std::inner_product(straight.begin(), straight.end(), straight.begin(), 0.0);
    QVERIFY(std::abs(power / static_cast<double>(straight.size()) - 1.0) < 1e-3);
}

void TestFilters::withoutWeightsHalfBitsStayAsTheyAre()
{
    const std::vector<float> halfBits = someTimecode().halves;
    QCOMPARE(equaliseByInverse(halfBits, FilteredSound(), halfBit), halfBits);
}

void TestFilters::aFilterIsUndone_data()
{
    QTest::addColumn<double>("corner"); // [Hz]
    QTest::addColumn<bool>("lowPass");
    QTest::newRow("low-pass of 1.2 kHz") << 1200.0 << true;
    QTest::newRow("low-pass of 3 kHz") << 3000.0 << true;
    QTest::newRow("high-pass of 1 kHz") << 1000.0 << false;
}

void TestFilters::aFilterIsUndone()
{
    QFETCH(double, corner);
    QFETCH(bool, lowPass);
    const auto response = [&](double frequency) {
        const std::complex<double> ratio(0.0, frequency / corner);
        return lowPass ? 1.0 / (1.0 + ratio) : ratio / (1.0 + ratio);
    };
    std::vector<double> powers{0.0};
    for (int step = 1; step < 320; ++step)
        powers.push_back(density(step * gainStep) * std::norm(response(step * gainStep)));
    const std::vector<std::complex<float>> gains = minimumPhaseGains(powers);
    const auto whole = [&](double frequency) {
        const auto step = static_cast<std::size_t>(frequency / gainStep);
        return std::complex<double>(gains[step]) * response(frequency);
    };
    const std::complex<double> middle = whole(1500.0);
    for (const double frequency : {600.0, 1000.0, 2000.0, 3000.0}) {
        const std::complex<double> share = whole(frequency) / middle;
        QVERIFY2(std::abs(20.0 * std::log10(std::abs(share))) < 2.0,
                 qPrintable(QString("%1 Hz: factor %2").arg(frequency).arg(std::abs(share))));
        QVERIFY2(std::abs(std::arg(share)) < 0.7,
                 qPrintable(QString("%1 Hz: %2 rad").arg(frequency).arg(std::arg(share))));
    }
}

void TestFilters::nothingIsRestoredFromNothing()
{
    QVERIFY(minimumPhaseGains({}).empty());
}

void TestFilters::adaptationUndoesAnEcho()
{
    const std::vector<float> clean = someTimecode().halves;
    std::vector<float> echoed = clean;
    for (std::size_t i = 3; i < clean.size(); ++i)
        echoed[i] += 0.5F * clean[i - 3];
    QVERIFY(correlation(equaliseByDecision(echoed, clean), clean) > 0.99);
    QVERIFY(correlation(echoed, clean) < 0.95);
}

void TestFilters::adaptationKeepsWhatIsMissing()
{
    std::vector<float> halfBits = someTimecode().halves;
    std::fill_n(halfBits.begin(), 100, 0.0F);
    const std::vector<float> result = equaliseByDecision(halfBits, halfBits);
    for (std::size_t i = 0; i < 100; ++i)
        QCOMPARE(result[i], 0.0F);
    QVERIFY(result[100] != 0.0F);
}

QTEST_APPLESS_MAIN(TestFilters)

#include "tst_filters.moc"

// SPDX-License-Identifier: MIT
#include "ltcreader/decision/hypothesis.h"

#include <QTest>

#include <numeric>

using namespace ltcreader;

class TestHypothesis : public QObject
{
    Q_OBJECT

private slots:
    void framesAreNumberedWithinTheirSeconds_data();
    void framesAreNumberedWithinTheirSeconds();
    void everyNumberingIsPossible_data();
    void everyNumberingIsPossible();
    void digitsCarryOver_data();
    void digitsCarryOver();
    void minutesAreAssumedWhereTheyChange_data();
    void minutesAreAssumedWhereTheyChange();
    void hoursStopAt23();
    void numbersAreLeftOutOnlyBeforeMinutesThatDropThem();
    void theSpeedSpeaksForItsBase_data();
    void theSpeedSpeaksForItsBase();
};

void TestHypothesis::framesAreNumberedWithinTheirSeconds_data()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("droppedAt");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("number");
    QTest::newRow("the first frame") << 25 << 7 << -1 << 0 << 0 << 7;
    QTest::newRow("the last of a second") << 25 << 7 << -1 << 17 << 0 << 24;
    QTest::newRow("the next second") << 25 << 7 << -1 << 18 << 1 << 0;
    QTest::newRow("numbers 0 and 1 left out") << 30 << 29 << 1 << 1 << 1 << 2;
    QTest::newRow("not left out before that") << 30 << 29 << 2 << 1 << 1 << 0;
    QTest::newRow("still shifted later") << 30 << 29 << 1 << 29 << 2 << 0;
}

void TestHypothesis::framesAreNumberedWithinTheirSeconds()
{
    QFETCH(int, base);
    QFETCH(int, first);
    QFETCH(int, droppedAt);
    QFETCH(int, frame);
    QFETCH(int, second);
    QFETCH(int, number);
    const auto place = placeOf(FrameNumbering{base, first, droppedAt}, frame);
    QCOMPARE(place.first, second);
    QCOMPARE(place.second, number);
}

void TestHypothesis::everyNumberingIsPossible_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("count");
    QTest::newRow("one frame") << 1 << 24 + 25 + 30;
    QTest::newRow("two frames may drop numbers between them") << 2 << 24 + 25 + 30 + 1;
    QTest::newRow("a second may drop numbers wherever it begins") << 31 << 24 + 25 + 30 + 30;
}

void TestHypothesis::everyNumberingIsPossible()
{
    QFETCH(int, frames);
    QFETCH(int, count);
    QCOMPARE(static_cast<int>(possibleNumberings(frames).size()), count);
}

void TestHypothesis::digitsCarryOver_data()
{
    QTest::addColumn<int>("hour");
    QTest::addColumn<int>("minute");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("later");
    QTest::addColumn<QVector<int>>("digits"); // hour, minute, second: tens and units
    QTest::newRow("seconds alone") << -1 << -1 << 8 << 2 << QVector<int>{-1, -1, -1, -1, 1, 0};
    QTest::newRow("into the minute") << -1 << 9 << 59 << 1 << QVector<int>{-1, -1, 1, 0, 0, 0};
    QTest::newRow("into the hour") << 9 << 59 << 58 << 3 << QVector<int>{1, 0, 0, 0, 0, 1};
    QTest::newRow("over midnight") << 23 << 59 << 59 << 1 << QVector<int>{0, 0, 0, 0, 0, 0};
    QTest::newRow("not yet") << 23 << 59 << 59 << 0 << QVector<int>{2, 3, 5, 9, 5, 9};
}

void TestHypothesis::digitsCarryOver()
{
    QFETCH(int, hour);
    QFETCH(int, minute);
    QFETCH(int, second);
    QFETCH(int, later);
    QFETCH(QVector<int>, digits);
    Hypothesis hypothesis;
    hypothesis.hour = hour;
    hypothesis.minute = minute;
    hypothesis.second = second;
    const Digits found = digitsAfter(hypothesis, later);
    const QVector<int> inOrder{found[HourTens],    found[HourUnits],  found[MinuteTens],
                               found[MinuteUnits], found[SecondTens], found[SecondUnits]};
    QCOMPARE(inOrder, digits);
}

void TestHypothesis::minutesAreAssumedWhereTheyChange_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("count");
    // For the last minute of an hour every hour is tried.
    constexpr int minutesAndHours = 59 + 24;
    QTest::newRow("one second: no minute changes") << 25 << 60;
    QTest::newRow("two seconds: the minute may change") << 26 << 59 + minutesAndHours;
    QTest::newRow("three seconds") << 51 << 58 + 2 * minutesAndHours;
}

void TestHypothesis::minutesAreAssumedWhereTheyChange()
{
    QFETCH(int, frames);
    QFETCH(int, count);
    QCOMPARE(static_cast<int>(hypothesesWith(FrameNumbering{25, 0, -1}, frames).size()), count);
}

void TestHypothesis::hoursStopAt23()
{
    const Hypothesis hypothesis = hypothesesWith(FrameNumbering{25, 0, -1}, 25).front();
    QVector<int> found;
    for (const HoursAllowed &hours : hoursOf(hypothesis)) {
        for (int tens = 0; tens < 4; ++tens) {
            for (int units = 0; units < 16; ++units) {
                if ((hours.tens >> tens & 1U) != 0 && (hours.units >> units & 1U) != 0)
                    found += 10 * tens + units;
            }
        }
    }
    QVector<int> ofADay(24);
    std::iota(ofADay.begin(), ofADay.end(), 0);
    QCOMPARE(found, ofADay);
}

void TestHypothesis::numbersAreLeftOutOnlyBeforeMinutesThatDropThem()
{
    const auto hypotheses = hypothesesWith(FrameNumbering{30, 15, 1}, 30);
    QVERIFY(!hypotheses.empty());
    for (const Hypothesis &hypothesis : hypotheses) {
        QCOMPARE(hypothesis.second, 59);
        QVERIFY((hypothesis.minute + 1) % 10 != 0);
        QCOMPARE(hypothesis.allowed[DropFlag], 0b10U);
    }
}

void TestHypothesis::theSpeedSpeaksForItsBase_data()
{
    QTest::addColumn<int>("base");
    QTest::addColumn<double>("measuredRate");
    QTest::addColumn<int>("rival");
    QTest::newRow("25") << 25 << 25.0 << 24;
    QTest::newRow("23.976 counts 24") << 24 << 23.976 << 25;
    QTest::newRow("29.97 counts 30") << 30 << 29.97 << 25;
    QTest::newRow("a little slow") << 25 << 24.8 << 24;
}

void TestHypothesis::theSpeedSpeaksForItsBase()
{
    QFETCH(int, base);
    QFETCH(double, measuredRate);
    QFETCH(int, rival);
    QVERIFY(speedPenalty(base, measuredRate) < speedPenalty(rival, measuredRate));
}

QTEST_APPLESS_MAIN(TestHypothesis)

#include "tst_hypothesis.moc"

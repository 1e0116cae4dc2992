// SPDX-License-Identifier: MIT
#include "timecode/timecode.h"

#include <QTest>

#include <ltc.h>

using namespace timecode;

Q_DECLARE_METATYPE(timecode::Rate)
Q_DECLARE_METATYPE(timecode::Label)

namespace
{

constexpr Rate film{24, false, false};
constexpr Rate filmNtsc{24, true, false};
constexpr Rate pal{25, false, false};
constexpr Rate ntsc{30, true, false};
constexpr Rate drop{30, true, true};
constexpr Rate whole{30, false, false};

} // namespace

class TestTimecode : public QObject
{
    Q_OBJECT

private slots:
    void labelsAndCountsAgree_data();
    void labelsAndCountsAgree();
    void labelsFollowEachOtherAsInLibltc_data();
    void labelsFollowEachOtherAsInLibltc();
    void leftOutLabelsDoNotExist_data();
    void leftOutLabelsDoNotExist();
    void aDayHasItsFrames();
    void countsOutsideTheDayWrap();
    void samplesAreExact_data();
    void samplesAreExact();
    void ratesAreWrittenAsFractions();
    void dropFrameIsWrittenWithASemicolon();
};

void TestTimecode::labelsAndCountsAgree_data()
{
    QTest::addColumn<Rate>("rate");
    QTest::addColumn<Label>("label");
    QTest::addColumn<qint64>("count");
    QTest::newRow("midnight") << pal << Label{0, 0, 0, 0} << qint64{0};
    QTest::newRow("one second") << pal << Label{0, 0, 1, 0} << qint64{25};
    QTest::newRow("last frame of the day") << pal << Label{23, 59, 59, 24} << qint64{2159999};
    QTest::newRow("ten o'clock, 23.976") << filmNtsc << Label{10, 0, 0, 0} << qint64{864000};
    QTest::newRow("before the first drop") << drop << Label{0, 0, 59, 29} << qint64{1799};
    QTest::newRow("after the first drop") << drop << Label{0, 1, 0, 2} << qint64{1800};
    QTest::newRow("before the tenth minute") << drop << Label{0, 9, 59, 29} << qint64{17981};
    QTest::newRow("the tenth minute keeps its labels") << drop << Label{0, 10, 0, 0} << qint64{17982};
    QTest::newRow("an hour of drop-frame") << drop << Label{1, 0, 0, 0} << qint64{107892};
    QTest::newRow("last frame of a drop-frame day") << drop << Label{23, 59, 59, 29} << qint64{2589407};
    QTest::newRow("29.97 without drop-frame") << ntsc << Label{0, 1, 0, 0} << qint64{1800};
}

void TestTimecode::labelsAndCountsAgree()
{
    QFETCH(Rate, rate);
    QFETCH(Label, label);
    QFETCH(qint64, count);
    QCOMPARE(qint64{frameCount(label, rate)}, count);
    QVERIFY(labelAt(count, rate) == label);
    QVERIFY(isLabel(label, rate));
}

void TestTimecode::labelsFollowEachOtherAsInLibltc_data()
{
    QTest::addColumn<Rate>("rate");
    QTest::newRow("24") << film;
    QTest::newRow("25") << pal;
    QTest::newRow("30") << whole;
    QTest::newRow("drop-frame") << drop;
}

/// A whole day of them.
void TestTimecode::labelsFollowEachOtherAsInLibltc()
{
    QFETCH(Rate, rate);
    LTCFrame frame{};
    frame.dfbit = rate.dropFrame ? 1 : 0;
    std::int64_t count = 0;
    do {
        const auto digits = [](unsigned tens, unsigned units) { return static_cast<int>(10 * tens + units); };
        const Label expected{
            digits(frame.hours_tens, frame.hours_units), digits(frame.mins_tens, frame.mins_units),
            digits(frame.secs_tens, frame.secs_units), digits(frame.frame_tens, frame.frame_units)};
        const Label label = labelAt(count, rate);
        QVERIFY2(label == expected && isLabel(label, rate) && frameCount(label, rate) == count,
                 toText(label, rate.dropFrame).c_str());
        ++count;
    } while (ltc_frame_increment(&frame, rate.base, LTC_TV_625_50, LTC_NO_PARITY) == 0);
    QCOMPARE(qint64{count}, qint64{framesPerDay(rate)});
}

void TestTimecode::leftOutLabelsDoNotExist_data()
{
    QTest::addColumn<Rate>("rate");
    QTest::addColumn<Label>("label");
    QTest::addColumn<bool>("exists");
    QTest::newRow("00 of a minute") << drop << Label{1, 1, 0, 0} << false;
    QTest::newRow("01 of a minute") << drop << Label{1, 1, 0, 1} << false;
    QTest::newRow("02 of a minute") << drop << Label{1, 1, 0, 2} << true;
    QTest::newRow("00 of a tenth minute") << drop << Label{1, 20, 0, 0} << true;
    QTest::newRow("00 of a minute without drop-frame") << ntsc << Label{1, 1, 0, 0} << true;
    QTest::newRow("frame 24 at 24") << film << Label{0, 0, 0, 24} << false;
    QTest::newRow("frame 24 at 25") << pal << Label{0, 0, 0, 24} << true;
    QTest::newRow("hour 24") << pal << Label{24, 0, 0, 0} << false;
    QTest::newRow("second 60") << pal << Label{0, 0, 60, 0} << false;
    QTest::newRow("minute 60") << pal << Label{0, 60, 0, 0} << false;
}

void TestTimecode::leftOutLabelsDoNotExist()
{
    QFETCH(Rate, rate);
    QFETCH(Label, label);
    QTEST(isLabel(label, rate), "exists");
}

void TestTimecode::aDayHasItsFrames()
{
    QCOMPARE(qint64{framesPerDay(drop)}, qint64{2589408});
    QCOMPARE(qint64{framesPerDay(ntsc)}, qint64{2592000});
    QCOMPARE(qint64{framesPerDay(film)}, qint64{2073600});
    QCOMPARE(qint64{framesPerDay(whole)}, qint64{2592000});
}

void TestTimecode::countsOutsideTheDayWrap()
{
    QVERIFY((labelAt(-1, pal) == Label{23, 59, 59, 24}));
    QVERIFY((labelAt(-1, drop) == Label{23, 59, 59, 29}));
    QVERIFY((labelAt(framesPerDay(drop), drop) == Label{0, 0, 0, 0}));
}

void TestTimecode::samplesAreExact_data()
{
    QTest::addColumn<Rate>("rate");
    QTest::addColumn<double>("frames");
    QTest::addColumn<int>("sampleRate"); // [Hz]
    QTest::addColumn<qint64>("samples");
    QTest::newRow("ten o'clock at 25") << pal << 900000.0 << 48000 << qint64{1728000000};
    QTest::newRow("ten o'clock at 23.976 is 36 s later")
        << filmNtsc << 864000.0 << 48000 << qint64{1729728000};
    QTest::newRow("half a frame") << pal << 0.5 << 48000 << qint64{960};
    QTest::newRow("1601.6 samples are rounded") << ntsc << 1.0 << 48000 << qint64{1602};
    QTest::newRow("five frames are whole again") << ntsc << 5.0 << 48000 << qint64{8008};
    QTest::newRow("a sample before midnight") << pal << -1.0 / 1920.0 << 48000 << qint64{86400} * 48000 - 1;
    QTest::newRow("a rounding error before midnight is midnight") << pal << -1e-9 << 48000 << qint64{0};
    QTest::newRow("29.97 before midnight is beyond 24 hours")
        << ntsc << 2591999.0 << 48000 << qint64{4151345598};
    QTest::newRow("the last sample of a drop-frame day")
        << drop << 2589408.0 - 0.8 / 1601.6 << 48000 << qint64{4147195852};
    QTest::newRow("192 kHz") << pal << 2159999.0 << 192000 << qint64{192000} * 86400 - 7680;
}

void TestTimecode::samplesAreExact()
{
    QFETCH(Rate, rate);
    QFETCH(double, frames);
    QFETCH(int, sampleRate);
    QFETCH(qint64, samples);
    QCOMPARE(qint64{samplesAt(frames, rate, sampleRate)}, samples);
}

void TestTimecode::ratesAreWrittenAsFractions()
{
    QCOMPARE(fraction(25, false), std::string("25/1"));
    QCOMPARE(fraction(30, true), std::string("30000/1001"));
}

void TestTimecode::dropFrameIsWrittenWithASemicolon()
{
    QCOMPARE(toText({1, 2, 3, 4}, false), std::string("01:02:03:04"));
    QCOMPARE(toText({23, 59, 59, 29}, true), std::string("23:59:59;29"));
}

QTEST_APPLESS_MAIN(TestTimecode)
#include "tst_timecode.moc"

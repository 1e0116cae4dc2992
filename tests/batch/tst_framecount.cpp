// SPDX-License-Identifier: MIT
#include "batch/framecount.h"

#include <QTest>

using framecount::Rate;

class TestFrameCount : public QObject
{
    Q_OBJECT

private slots:
    void framesAreCounted_data();
    void framesAreCounted();
    void everyFrameOfADayHasATextOfItsOwn_data();
    void everyFrameOfADayHasATextOfItsOwn();
    void noTimecodeHasNoFrames_data();
    void noTimecodeHasNoFrames();
    void pictureRatesAreRecognised_data();
    void pictureRatesAreRecognised();
    void otherRatesCountOtherwise_data();
    void otherRatesCountOtherwise();
};

namespace
{

constexpr Rate rate24{24, false, false};
constexpr Rate rate25{25, false, false};
constexpr Rate rate50{50, false, false};
constexpr Rate rate30{30, false, false};
constexpr Rate drop30{30, true, true};
constexpr Rate drop60{60, true, true};

} // namespace

Q_DECLARE_METATYPE(framecount::Rate)

void TestFrameCount::framesAreCounted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Rate>("rate");
    QTest::addColumn<qint64>("frames");
    QTest::newRow("midnight") << "00:00:00:00" << rate25 << qint64{0};
    QTest::newRow("25") << "10:00:00:12" << rate25 << qint64{900012};
    QTest::newRow("the last frame before a number is left out") << "00:00:59;29" << drop30 << qint64{1799};
    QTest::newRow("the frame after it") << "00:01:00;02" << drop30 << qint64{1800};
    QTest::newRow("nothing is left out in a tenth minute") << "00:10:00;00" << drop30 << qint64{17982};
    QTest::newRow("an hour of drop-frame") << "01:00:00;00" << drop30 << qint64{107892};
    QTest::newRow("four numbers at 60") << "00:01:00;04" << drop60 << qint64{3600};
    QTest::newRow("the end of a day") << "23:59:59:29" << rate30 << qint64{2591999};
}

void TestFrameCount::framesAreCounted()
{
    QFETCH(QString, text);
    QFETCH(Rate, rate);
    QFETCH(qint64, frames);
    QCOMPARE(framecount::fromText(text, rate).value_or(-1), frames);
    QCOMPARE(framecount::toText(frames, rate), text);
}

void TestFrameCount::everyFrameOfADayHasATextOfItsOwn_data()
{
    QTest::addColumn<Rate>("rate");
    QTest::addColumn<qint64>("day"); // [frames]
    QTest::newRow("25") << rate25 << qint64{25 * 86400};
    QTest::newRow("29.97 drop-frame") << drop30 << qint64{2589408};
    QTest::newRow("59.94 drop-frame") << drop60 << qint64{5178816};
}

void TestFrameCount::everyFrameOfADayHasATextOfItsOwn()
{
    QFETCH(Rate, rate);
    QFETCH(qint64, day);
    constexpr qint64 step = 97; // prime: meets every place of a minute
    for (qint64 frame = 0; frame < day; frame += step)
        QCOMPARE(framecount::fromText(framecount::toText(frame, rate), rate).value_or(-1), frame);
    QCOMPARE(framecount::toText(day, rate), framecount::toText(0, rate));
    QCOMPARE(framecount::toText(-1, rate), framecount::toText(day - 1, rate));
}

void TestFrameCount::noTimecodeHasNoFrames_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Rate>("rate");
    QTest::newRow("nothing") << "" << rate25;
    QTest::newRow("words") << "audio TC not found" << rate25;
    QTest::newRow("no such frame") << "10:00:00:25" << rate25;
    QTest::newRow("no such hour") << "24:00:00:00" << rate25;
    QTest::newRow("a number that is left out") << "00:01:00;01" << drop30;
    QTest::newRow("no rate") << "10:00:00:00" << Rate();
}

void TestFrameCount::noTimecodeHasNoFrames()
{
    QFETCH(QString, text);
    QFETCH(Rate, rate);
    QVERIFY(!framecount::fromText(text, rate));
    QCOMPARE(framecount::atRate(text, rate, rate30), QString());
}

void TestFrameCount::pictureRatesAreRecognised_data()
{
    QTest::addColumn<QString>("fraction");
    QTest::addColumn<int>("base");
    QTest::addColumn<bool>("ntsc");
    QTest::newRow("25") << "25/1" << 25 << false;
    QTest::newRow("29.97") << "30000/1001" << 30 << true;
    QTest::newRow("23.976 as cameras round it") << "2997/125" << 24 << true;
    QTest::newRow("59.94") << "60000/1001" << 60 << true;
    QTest::newRow("an average near 29.97") << "899/30" << 30 << true;
    QTest::newRow("exactly 30") << "30/1" << 30 << false;
    QTest::newRow("no rate") << "0/0" << -1 << false;
    QTest::newRow("a photograph") << "1/10" << -1 << false;
    QTest::newRow("nothing") << "" << -1 << false;
    QTest::newRow("between") << "27/2" << -1 << false;
}

void TestFrameCount::pictureRatesAreRecognised()
{
    QFETCH(QString, fraction);
    QFETCH(bool, ntsc);
    const auto rate = framecount::pictureRate(fraction);
    QTEST(rate ? rate->base : -1, "base");
    if (rate)
        QCOMPARE(rate->ntsc, ntsc);
}

void TestFrameCount::otherRatesCountOtherwise_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Rate>("from");
    QTest::addColumn<Rate>("to");
    QTest::addColumn<QString>("counted");
    QTest::newRow("the same") << "10:11:12:13" << rate25 << rate25 << "10:11:12:13";
    QTest::newRow("twice as fast") << "10:11:12:13" << rate25 << rate50 << "10:11:12:26";
    QTest::newRow("a little slower: the nearest") << "10:11:12:13" << rate25 << rate24 << "10:11:12:12";
    QTest::newRow("never the next second") << "10:11:12:24" << rate25 << rate24 << "10:11:12:23";
    QTest::newRow("drop-frame twice as fast") << "10:11:12;13" << drop30 << drop60 << "10:11:12;26";
}

void TestFrameCount::otherRatesCountOtherwise()
{
    QFETCH(QString, text);
    QFETCH(Rate, from);
    QFETCH(Rate, to);
    QTEST(framecount::atRate(text, from, to), "counted");
}

QTEST_APPLESS_MAIN(TestFrameCount)
#include "tst_framecount.moc"

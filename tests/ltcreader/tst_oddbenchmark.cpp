// SPDX-License-Identifier: MIT
#include "bench/ltc/oddresult.h"

#include <QTest>

#include <cmath>
#include <map>
#include <set>

using namespace ltcbench;

Q_DECLARE_METATYPE(std::string)

namespace
{

constexpr LtcRate pal{25, false, false};
constexpr LtcRate drop{30, true, true};

/// Frames of labels at 25 frames a second, given as numbers of frames after 10:00:00:00; -1 is a label that
/// does not exist.
std::vector<Stretch> stretches(const std::vector<int> &labels, double offset = 0.0)
{
    LtcSignal signal;
    signal.rate = pal;
    signal.start = {10, 0, 0, 0};
    signal.offset = offset;
    const FrameAt frameAt = [&labels](std::int64_t index) {
        const int label = labels.at(static_cast<std::size_t>(index));
        return SentFrame{label < 0 ? LtcTime{24, 0, 0, 0} : LtcTime{10, 0, label / 25, label % 25}};
    };
    return stretchesOf(signal, frameAt, {0, static_cast<int>(labels.size())});
}

/// The labels of the first sample by \a lines, as texts.
QStringList textsOf(const std::vector<Truth> &lines)
{
    QStringList texts;
    for (const Truth &line : lines)
        texts +=
            QString::fromStdString(testsignals::text(testsignals::startTime(line.signal), line.signal.rate));
    return texts;
}

std::string report(const std::string &samples, const std::string &measured)
{
    return R"({"Timecode": "10:00:00:00", "DropFrame": false, "NTSC": false, "FrameRateFound": 25, )"
           R"("FrameRateBaseFound": 25, "ChannelFound": 0, "SamplesSinceMidnight": )" +
           samples + R"(, "MeasuredFrameRate": )" + measured + "}\n";
}

std::vector<Truth> lines(const std::vector<LtcTime> &starts)
{
    std::vector<Truth> result;
    for (const LtcTime &start : starts) {
        Truth truth;
        truth.signal.start = start;
        truth.signal.rate = pal;
        result.push_back(truth);
    }
    return result;
}

OddResult result(Verdict verdict, double confidence)
{
    OddResult odd;
    odd.draw = drawOf(Kind::Programme, 1, 0);
    odd.verdict = verdict;
    odd.confidence = confidence;
    odd.tooNoisy = true;
    odd.reason = "no JSON";
    odd.there = "no line";
    odd.answered = "1:00";
    return odd;
}

} // namespace

class TestOddBenchmark : public QObject
{
    Q_OBJECT

private slots:
    void theLineAtTheBeginningIsRight_data();
    void theLineAtTheBeginningIsRight();
    void onlyTimecodeThatRunsFromEndToEndIsRightWhereNoLineRuns_data();
    void onlyTimecodeThatRunsFromEndToEndIsRightWhereNoLineRuns();
    void framesThatAreCutOffDoNotCount();
    void labelsExistOrNot_data();
    void labelsExistOrNot();
    void badDigitsAreSentWithRightParity();
    void answersAreJudged();
    void reportsAreWholeOrBroken_data();
    void reportsAreWholeOrBroken();
    void recordingsAreFoundByTheirName();
    void sameNameMakesSameRecording();
    void whatWasReadWrongOnceIsNot_data();
    void whatWasReadWrongOnceIsNot();
    void whatWasRefusedOnceIsRead_data();
    void whatWasRefusedOnceIsRead();
    void whatIsLikeliestIsClearestToo_data();
    void whatIsLikeliestIsClearestToo();
    void everyBehaviourIsDrawnAndMade();
    void recordingsAtTheEdgeAreOrdinary();
    void valuesAtTheEdgeFollowTheLength();
    void faultsAreNamed();
    void everyRecordingHasALine();
};

void TestOddBenchmark::theLineAtTheBeginningIsRight_data()
{
    QTest::addColumn<std::vector<int>>("labels");
    QTest::addColumn<QStringList>("right");
    const auto row = [](const char *name, const std::vector<int> &labels, const QStringList &right) {
        QTest::newRow(name) << labels << right;
    };
    const QString first = "10:00:00:00";
    row("nothing jumps", {0, 1, 2, 3}, {first});
    row("two frames before a jump", {0, 1, 50, 51, 52}, {first});
    row("one frame before a jump", {0, 50, 51, 52}, {first, "10:00:01:24"});
    row("one frame before a jump and one after", {0, 50}, {first, "10:00:01:24"});
    row("a frame repeated after two", {0, 1, 1, 2, 3}, {first});
    row("a frame repeated after one", {0, 0, 1, 2, 3}, {first, "09:59:59:24"});
    row("a frame skipped after three", {0, 1, 2, 4, 5, 6}, {first});
    row("a jump backwards", {10, 11, 12, 3, 4}, {"10:00:00:10"});
    row("paused for three frames", {0, 0, 0, 1, 2}, {});
    row("paused for two frames", {0, 0, 1, 2, 3}, {first, "09:59:59:24"});
    row("running, then paused", {0, 1, 2, 2, 2}, {first});
    row("a label that does not exist before the line", {-1, 1, 2, 3}, {first});
    row("two labels that do not exist before the line", {-1, -1, 2, 3}, {});
    row("no label exists", {-1, -1, -1}, {});
}

void TestOddBenchmark::theLineAtTheBeginningIsRight()
{
    QFETCH(std::vector<int>, labels);
    QFETCH(QStringList, right);
    QCOMPARE(textsOf(rightLines(stretches(labels))), right);
}

void TestOddBenchmark::onlyTimecodeThatRunsFromEndToEndIsRightWhereNoLineRuns_data()
{
    QTest::addColumn<std::vector<int>>("labels");
    QTest::addColumn<int>("right");
    QTest::newRow("held for two frames") << std::vector<int>{0, 0, 1, 1} << 0;
    QTest::newRow("counting down") << std::vector<int>{9, 8, 7} << 0;
    QTest::newRow("one whole frame says nothing else") << std::vector<int>{5} << 1;
    QTest::newRow("the seam of two held labels counts up") << std::vector<int>{5, 6} << 1;
    QTest::newRow("a label that does not exist") << std::vector<int>{-1} << 0;
}

void TestOddBenchmark::onlyTimecodeThatRunsFromEndToEndIsRightWhereNoLineRuns()
{
    QFETCH(std::vector<int>, labels);
    QFETCH(int, right);
    QCOMPARE(static_cast<int>(onlyLine(stretches(labels)).size()), right);
}

void TestOddBenchmark::framesThatAreCutOffDoNotCount()
{
    LtcSignal signal;
    signal.rate = pal;
    signal.duration = 0.2;
    const auto count = [&signal](double offset, double begin, double end) {
        signal.offset = offset;
        return wholeFrames(signal, begin, end);
    };
    QCOMPARE(count(0.0, 0.0, 0.2).count, 5);
    QCOMPARE(count(0.0, 0.0, 0.2).first, std::int64_t{0});
    QCOMPARE(count(0.3, 0.0, 0.2).count, 4);
    QCOMPARE(count(0.3, 0.0, 0.2).first, std::int64_t{1});
    QCOMPARE(count(-0.3, 0.0, 0.2).first, std::int64_t{0});
    QCOMPARE(count(0.0, 0.05, 0.2).first, std::int64_t{2});
    QCOMPARE(count(0.0, 0.05, 0.11).count, 0);
}

void TestOddBenchmark::labelsExistOrNot_data()
{
    QTest::addColumn<int>("hours");
    QTest::addColumn<int>("minutes");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<int>("frames");
    QTest::addColumn<bool>("dropFrame");
    QTest::addColumn<bool>("exists");
    QTest::newRow("last of the day") << 23 << 59 << 59 << 24 << false << true;
    QTest::newRow("hour 24") << 24 << 0 << 0 << 0 << false << false;
    QTest::newRow("minute 60") << 0 << 60 << 0 << 0 << false << false;
    QTest::newRow("second 60") << 0 << 0 << 60 << 0 << false << false;
    QTest::newRow("frame 25 at 25") << 0 << 0 << 0 << 25 << false << false;
    QTest::newRow("left out by drop-frame") << 1 << 1 << 0 << 1 << true << false;
    QTest::newRow("kept in each tenth minute") << 1 << 10 << 0 << 1 << true << true;
}

void TestOddBenchmark::labelsExistOrNot()
{
    QFETCH(int, hours);
    QFETCH(int, minutes);
    QFETCH(int, seconds);
    QFETCH(int, frames);
    QFETCH(bool, dropFrame);
    QTEST(isLabel({hours, minutes, seconds, frames}, dropFrame ? drop : pal), "exists");
}

void TestOddBenchmark::badDigitsAreSentWithRightParity()
{
    SentFrame frame{{12, 34, 56, 7}};
    const auto good = bitsOf(frame, pal);
    frame.badDigitAt = 48;
    frame.badDigit = 13;
    const auto bad = bitsOf(frame, pal);
    QVERIFY(bad[48] && !bad[49] && bad[50] && bad[51]);
    QVERIFY(good.count() % 2 == 0 && bad.count() % 2 == 0);
}

void TestOddBenchmark::answersAreJudged()
{
    const std::vector<Truth> two = lines({{1, 0, 0, 0}, {2, 0, 0, 0}});
    const auto answer = [](int hours, LtcRate rate = pal) { return Answer{{hours, 0, 0, 0}, rate}; };
    QVERIFY(judge(two, answer(1), {}) == Verdict::Right);
    QVERIFY(judge(two, answer(2), {}) == Verdict::Right);
    QVERIFY(judge(two, answer(3), {}) == Verdict::Wrong);
    QVERIFY(judge(two, answer(1, {24, false, false}), {}) == Verdict::Wrong);
    QVERIFY(judge(two, answer(1), "nan") == Verdict::Broken);
    QVERIFY(judge(two, std::nullopt, {}) == Verdict::Refused);
    QVERIFY(judge({}, answer(1), {}) == Verdict::Wrong);
    QVERIFY(judge({}, std::nullopt, {}) == Verdict::Refused);
}

void TestOddBenchmark::reportsAreWholeOrBroken_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<bool>("whole");
    QTest::newRow("whole") << report("5", "25.00000") << true;
    QTest::newRow("infinite rate") << report("5", "inf") << false;
    QTest::newRow("no number") << report("5", "-nan") << false;
    QTest::newRow("before midnight") << report("-9223372036854775808", "25.0") << false;
    QTest::newRow("last sample of the day") << report("4147199999", "25.0") << true;
    QTest::newRow("a day later") << report("4147200000", "25.0") << false;
    QTest::newRow("14 % fast") << report("5", "28.5") << true;
    QTest::newRow("16 % slow") << report("5", "21.0") << false;
    QTest::newRow("cut off") << report("5", "25.0").substr(0, 60) << false;
    QTest::newRow("more than an object") << report("5", "25.0") + "}" << false;
    QTest::newRow("empty") << std::string() << false;
    QTest::newRow("a key is missing") << std::string("{\"Timecode\": \"10:00:00:00\"}") << false;
    QTest::newRow("a number with a leading zero") << report("05", "25.0") << false;
}

void TestOddBenchmark::reportsAreWholeOrBroken()
{
    QFETCH(std::string, text);
    QFETCH(bool, whole);
    const std::string fault = faultIn(text, 48000);
    QVERIFY2(fault.empty() == whole, fault.c_str());
}

void TestOddBenchmark::recordingsAreFoundByTheirName()
{
    for (const Kind kind : {Kind::Odd, Kind::Edge, Kind::Programme}) {
        const Draw draw = drawOf(kind, 7, 12);
        const Draw found = drawNamed(nameOf(draw));
        QVERIFY(found.kind == kind);
        QCOMPARE(found.seed, draw.seed);
        QCOMPARE(found.index, draw.index);
    }
    QVERIFY_EXCEPTION_THROWN(drawNamed("7"), std::invalid_argument);
    QVERIFY_EXCEPTION_THROWN(drawNamed("7/x"), std::invalid_argument);
}

void TestOddBenchmark::sameNameMakesSameRecording()
{
    QVERIFY(caseOf(drawNamed("3/5")).recording.channels == caseOf(drawNamed("3/5")).recording.channels);
    QVERIFY(caseOf(drawNamed("3/5")).recording.channels != caseOf(drawNamed("4/5")).recording.channels);
}

void TestOddBenchmark::whatWasReadWrongOnceIsNot_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("0.2 s in speech, proven late") << "edge/1702/312";
    QTest::newRow("early jump by an hour in music") << "1501/5737";
    QTest::newRow("early jump by an hour in speech") << "1501/47979";
    QTest::newRow("early jump by an hour in wind") << "1301/3403";
    QTest::newRow("early jump by an hour in quiet speech") << "1301/30489";
    QTest::newRow("frame numbers from 30 to 39 in white noise") << "1301/833";
    QTest::newRow("labels of no clock behind a low-pass") << "1701/27";
    QTest::newRow("frames skipped, in music") << "1301/29609";
    QTest::newRow("five frames of another base before a full second") << "1804/873";
    QTest::newRow("a jump between polarities, in hum") << "1807/9054";
    QTest::newRow("a jump in a wireless link") << "1807/10024";
    QTest::newRow("hum that is louder by 86 dB") << "edge/1811/507";
    QTest::newRow("early jump below loud music") << "1807/4443";
    QTest::newRow("early jump in a wireless link") << "1901/16153";
    QTest::newRow("a whole frame and almost another before a jump, among spikes") << "1816/1043";
    QTest::newRow("frames repeated in wind, which hides the first ones") << "2001/13679";
    QTest::newRow("a date that changes with the hours, in a wireless link") << "2401/10393";
    QTest::newRow("the same, 3 s") << "2101/13169";
    QTest::newRow("a jump between two clocks, in speech") << "2401/15819";
    QTest::newRow("polarity flip, 0.2 s, 24") << "2401/16091";
    QTest::newRow("early jump by an hour in music, 25 frames") << "1807/15921";
    QTest::newRow("early jump by an hour in quiet music") << "1816/7966";
    QTest::newRow("early jump by an hour behind a radio channel") << "1901/4135";
    QTest::newRow("early jump by an hour behind a high-pass") << "1901/31457";
    QTest::newRow("jump forwards in clipped noise") << "1816/12617";
    QTest::newRow("frames skipped behind a gain control") << "1816/14200";
    QTest::newRow("frames skipped as if 24 were counted, though frames 24 are read") << "5101/91903";
    QTest::newRow("held labels, of which one is misread by its slope") << "5101/97652";
    QTest::newRow("early jump in music") << "5101/18280";
    QTest::newRow("frame 23 of 24 that may be frame 24 of 25, in 0.2 s of wow") << "6202/13184";
    QTest::newRow("frames skipped as if 24 were counted, in wind") << "7601/8729";
    QTest::newRow("23.976, not 24, in 0.2 s of speech") << "edge/7702/2351";
    QTest::newRow("another hour, in hum of twice the frame rate") << "5101/88623";
    QTest::newRow("what a filter took away taken for its echo, 0.2 s behind a radio channel") << "7401/5192";
    QTest::newRow("labels of no clock and echoes that are none, 0.2 s in a wireless link") << "7801/31824";
    QTest::newRow("a full minute that is counted against the flag, 0.3 s of white noise") << "8001/7357";
    QTest::newRow("a frame before a jump bent by its own echo, in speech") << "7601/7190";
}

void TestOddBenchmark::whatWasReadWrongOnceIsNot()
{
    QFETCH(QString, name);
    const OddResult result = measure(drawNamed(name.toStdString()));
    QVERIFY2(result.verdict == Verdict::Right || result.verdict == Verdict::Refused, result.answered.c_str());
}

void TestOddBenchmark::whatWasRefusedOnceIsRead_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a sync word bent by hum, 0.2 s") << "edge/9003/2901";
    QTest::newRow("a sync word bent by speech, 0.2 s") << "edge/9003/517";
    QTest::newRow("a weak clock, -19.0 dB, 29.97") << "edge/1902/914";
    QTest::newRow("30, not 29.97, in 0.2 s of white noise") << "edge/2151/666";
    QTest::newRow("bits that are not where the clock is, radio channel, 1 s") << "edge/2151/221";
    QTest::newRow("bits that are not where the clock is, white noise") << "edge/2151/504";
    QTest::newRow("a line that is proven little by little, -19.8 dB, 29.97") << "edge/2151/1126";
    QTest::newRow("a line that is proven little by little, wind") << "edge/2151/391";
    QTest::newRow("23.976, not 24, in 0.2 s of hum") << "edge/5201/31166";
    QTest::newRow("bits that only high frequencies show, 0.2 s") << "edge/7702/8";
}

void TestOddBenchmark::whatWasRefusedOnceIsRead()
{
    QFETCH(QString, name);
    QVERIFY(measure(drawNamed(name.toStdString())).verdict == Verdict::Right);
}

void TestOddBenchmark::whatIsLikeliestIsClearestToo_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("another adapts better, 0.2 s behind a radio channel, 30") << "edge/9001/1517";
    QTest::newRow("another adapts better, 0.2 s behind a radio channel, 29.97") << "edge/9003/2673";
}

void TestOddBenchmark::whatIsLikeliestIsClearestToo()
{
    QFETCH(QString, name);
    QVERIFY(measure(drawNamed(name.toStdString())).likelyRight);
}

void TestOddBenchmark::everyBehaviourIsDrawnAndMade()
{
    const std::set<std::string> neverRight{"double speed", "half speed", "48, 50 or 60 frames a second",
                                           "programme sound"};
    std::map<std::string, int> made;
    for (std::uint64_t index = 0; index < 400; ++index) {
        const Draw draw = drawOf(Kind::Odd, 11, index);
        if (draw.seconds > 0.3)
            continue;
        const OddCase odd = caseOf(draw);
        ++made[draw.behaviour->name];
        QCOMPARE(odd.recording.channels.front().size(),
                 static_cast<std::size_t>(std::lround(draw.seconds * 48000)));
        if (neverRight.contains(draw.behaviour->name))
            QVERIFY(odd.right.empty());
        if (draw.behaviour->name == "ordinary")
            QCOMPARE(static_cast<int>(odd.right.size()), 1);
    }
    QCOMPARE(made.size(), allBehaviours().size());
}

void TestOddBenchmark::recordingsAtTheEdgeAreOrdinary()
{
    for (std::uint64_t index = 0; index < 200; ++index) {
        const Draw draw = drawOf(Kind::Edge, 1, index);
        QCOMPARE(draw.behaviour->name, std::string("ordinary"));
        QVERIFY(draw.disturbance->edgeWeight > 0);
        const double distance = draw.value - edgeOf(*draw.disturbance, draw.seconds);
        QVERIFY(std::abs(distance) <= 2 * draw.disturbance->step);
    }
}

void TestOddBenchmark::valuesAtTheEdgeFollowTheLength()
{
    Disturbance disturbance;
    disturbance.edge = {-10, -20, -24};
    QCOMPARE(edgeOf(disturbance, 0.2), -10.0);
    QCOMPARE(edgeOf(disturbance, 1.0), -20.0);
    QCOMPARE(edgeOf(disturbance, 3.0), -24.0);
    QCOMPARE(edgeOf(disturbance, 0.04), 0.0);
}

void TestOddBenchmark::faultsAreNamed()
{
    QCOMPARE(QString::fromStdString(textOfFault(result(Verdict::Broken, 0.5))),
             QString("broken programme/1/0: programme sound, 23.976, 0.15 s; there no line, answered 1:00, "
                     "confidence 0.5; no JSON"));
}

void TestOddBenchmark::everyRecordingHasALine()
{
    const OddResult wrong = result(Verdict::Wrong, 0.5);
    const QJsonObject line = toJson(wrong);
    QCOMPARE(line, (QJsonObject{{"case", "programme/1/0"},
                                {"behaviour", "programme sound"},
                                {"disturbance", "none"},
                                {"grade", 0},
                                {"value", 0},
                                {"seconds", wrong.draw.seconds},
                                {"rate", QString::fromStdString(nameOf(wrong.draw.rate))},
                                {"verdict", "wrong"},
                                {"confidence", 0.5},
                                {"too_noisy", true},
                                {"likely_right", false},
                                {"reason", "no JSON"}}));
}

QTEST_APPLESS_MAIN(TestOddBenchmark)

#include "tst_oddbenchmark.moc"

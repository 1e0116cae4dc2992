// SPDX-License-Identifier: MIT
#include "bench/ltc/readers.h"
#include "testkit/recordings/recordings.h"

#include <QTest>

#include <algorithm>
#include <map>
#include <stdexcept>

using namespace ltcbench;

Q_DECLARE_METATYPE(ltcbench::Curve)

namespace
{

constexpr std::uint64_t seed = 20; // another than the benchmark's own

/// The grade of each curve up to which every recording must be read, well inside of what the decoder reaches.
/// Of curves that are not named here nothing is demanded but that no answer is wrong.
const std::map<std::string, double> &readUpTo()
{
    static const std::map<std::string, double> grades{
        {"white noise, 3 s, 23.976", -14},
        {"white noise, 3 s, 24", -14},
        {"white noise, 3 s, 25", -14},
        {"white noise, 3 s, 29.97", -14},
        {"white noise, 3 s, 29.97 drop", -14},
        {"white noise, 3 s, 30", -14},
        {"white noise, 1 s, 25", -8},
        {"white noise, 0.2 s, 25", 0},
        {"pink noise", -8},
        {"hum", -20},
        {"wind", -35},
        {"radio channel", -4},
        {"speech bleed", -10},
        {"music bleed", -10},
        {"level, 16 bit with dither", 2},
        {"overdriven with noise at 6 dB", 60},
        {"automatic gain, speech at 6 dB", 40},
        {"low-pass", 1200},
        {"high-pass", 5000},
        {"spikes, -50 to -1 dBFS", 20},
        {"spikes by level", -60},
        {"spikes in white noise", -4},
        {"constant offset, timecode at -20 dBFS", 0.9},
        {"asymmetry", 20},
        {"polarity", 1},
        {"slow machine", 10},
        {"fast machine", 10},
        {"wow, 0.4 to 2 Hz", 2},
        {"flutter, 6 to 30 Hz", 2},
        {"dropouts of 5 to 100 ms", 60},
        {"late start in 3 s", 0.3},
        {"early end in 3 s", 0.3},
        {"jump in 3 s", 0.5},
        {"clean", 5},
        {"sample rates", 192000},
        {"sample rates, white noise of -4 dB at 48 kHz", 16000},
        {"sample sizes", 33},
        {"durations", 0.2},
        {"across midnight", 5},
        {"across full minutes", 5},
        {"user bits like sync words", 5},
        {"odd bits", 2},
        {"odd bits in white noise", -8},
        {"channels", 16},
        {"leak into a second channel", 3},
        {"foreign timecode in the channel", 9},
        {"leak alone, below speech", -6},
        {"line into microphone input", 4},
        {"long cable", 2},
    };
    return grades;
}

const Curve &curveNamed(const std::string &name)
{
    for (const Curve &curve : allCurves()) {
        if (curve.name == name)
            return curve;
    }
    throw std::invalid_argument(name);
}

/// What was read of a failed recording, and how to see it again.
QString reproduction(const std::string &name, const Case &recording, const std::optional<Answer> &answer)
{
    return QString("there %1, answered %2 (ltc-benchmark --seed %3 --case \"%4\")")
        .arg(QString::fromStdString(textOfTruth(recording)), QString::fromStdString(textOf(answer)),
             QString::number(seed), QString::fromStdString(name));
}

} // namespace

class TestLtcBenchmark : public QObject
{
    Q_OBJECT

private slots:
    void cleanTimecodeIsReadToTheSample_data();
    void cleanTimecodeIsReadToTheSample();
    void impairedTimecodeIsReadOrRefusedButNeverWrong_data();
    void impairedTimecodeIsReadOrRefusedButNeverWrong();
    void everyDemandedGradeIsMeasured();
    void recordingsAreFoundByTheirName();
    void noTimecodeIsInvented_data();
    void noTimecodeIsInvented();
};

void TestLtcBenchmark::cleanTimecodeIsReadToTheSample_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("sampleRate");
    for (std::size_t rate = 0; rate < allRates().size(); ++rate) {
        for (const int sampleRate : {8000, 16000, 32000, 44100, 48000, 88200, 96000, 192000}) {
            const QString name = QString::fromStdString(nameOf(allRates()[rate]));
            QTest::newRow(qPrintable(QString("%1 at %2 Hz").arg(name).arg(sampleRate)))
                << static_cast<int>(rate) << sampleRate;
        }
    }
}

void TestLtcBenchmark::cleanTimecodeIsReadToTheSample()
{
    QFETCH(int, rate);
    QFETCH(int, sampleRate);
    Random random = Random::forCase(
        seed, "clean", static_cast<std::uint64_t>(rate) * static_cast<std::uint64_t>(sampleRate));
    for (const double duration : {3.0, 0.5}) {
        LtcSignal signal = anySignal(random, allRates()[static_cast<std::size_t>(rate)]);
        signal.sampleRate = sampleRate;
        signal.duration = duration;
        const Case recording = monoCase(signal, audioOf(signal, random), random);
        const std::optional<Answer> answer = readWithOurs(recording);
        QVERIFY2(judge(recording, answer) == Verdict::Right,
                 (textOfTruth(recording) + "\n" + textOf(answer)).c_str());
        const double error = positionError(*recording.truth, *answer);
        QVERIFY2(duration < 1.0 || error <= 3.0, qPrintable(QString("%1 samples").arg(error)));
    }
}

void TestLtcBenchmark::impairedTimecodeIsReadOrRefusedButNeverWrong_data()
{
    QTest::addColumn<Curve>("curve");
    for (const Curve &curve : allCurves()) {
        if (curve.section != "Codecs") // need a tool that the test may not have
            QTest::newRow(curve.name.c_str()) << curve;
    }
}

void TestLtcBenchmark::impairedTimecodeIsReadOrRefusedButNeverWrong()
{
    QFETCH(Curve, curve);
    // The demanded grade and two that are harder; all of them where none is harder than another.
    const auto demanded = readUpTo().find(curve.name);
    const auto last = demanded == readUpTo().end()
                          ? curve.grades.begin()
                          : std::find(curve.grades.begin(), curve.grades.end(), demanded->second);
    const auto demandedGrade = static_cast<std::size_t>(last - curve.grades.begin());
    const std::size_t first = curve.graded ? demandedGrade : 0;
    const std::size_t end = std::min(demandedGrade + 3, curve.grades.size());
    for (std::size_t grade = first; grade < end; ++grade) {
        const Case recording = recordingOf(curve, seed, grade, 0);
        const std::optional<Answer> answer = readWithOurs(recording);
        const QString failure = reproduction(nameOfRecording(curve, grade, 0), recording, answer);
        QVERIFY2(judge(recording, answer) != Verdict::Wrong, qPrintable(failure));
        QVERIFY2(answer || grade > demandedGrade || demanded == readUpTo().end(), qPrintable(failure));
    }
}

void TestLtcBenchmark::everyDemandedGradeIsMeasured()
{
    for (const auto &[name, demanded] : readUpTo()) {
        const std::vector<double> &grades = curveNamed(name).grades;
        QVERIFY2(std::find(grades.begin(), grades.end(), demanded) != grades.end(), name.c_str());
    }
}

void TestLtcBenchmark::recordingsAreFoundByTheirName()
{
    QVERIFY(recordingNamed(nameOfRecording(curveNamed("clean"), 1, 0), seed));
    QVERIFY(recordingNamed(nameOfRecording(allSounds().front(), 0, 3), seed));
    QVERIFY(!recordingNamed("clean/6/0", seed));
    QVERIFY(!recordingNamed("clean", seed));
    QVERIFY(!recordingNamed("unheard of/0/0", seed));
    QVERIFY_EXCEPTION_THROWN(recordingNamed("clean/one/0", seed), std::invalid_argument);
    QVERIFY_EXCEPTION_THROWN(recordingNamed("clean/1/", seed), std::invalid_argument);
}

void TestLtcBenchmark::noTimecodeIsInvented_data()
{
    QTest::addColumn<Curve>("sound");
    for (const Curve &sound : allSounds())
        QTest::newRow(sound.name.c_str()) << sound;
}

void TestLtcBenchmark::noTimecodeIsInvented()
{
    QFETCH(Curve, sound);
    constexpr std::uint64_t files = 6;
    for (std::uint64_t file = 0; file < files; ++file) {
        const Case recording = recordingOf(sound, seed, 0, file);
        const std::optional<Answer> answer = readWithOurs(recording);
        QVERIFY2(!answer, qPrintable(reproduction(nameOfRecording(sound, 0, file), recording, answer)));
    }
}

QTEST_APPLESS_MAIN(TestLtcBenchmark)

#include "tst_ltcbenchmark.moc"

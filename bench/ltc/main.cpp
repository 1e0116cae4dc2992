// SPDX-License-Identifier: MIT
#include "bench/ltc/readers.h"
#include "bench/support/program.h"
#include "testkit/recordings/recordings.h"
#include "testkit/signals/lossycodec.h"

#include <QCoreApplication>

#include <algorithm>
#include <ctime>
#include <iostream>
#include <map>

using namespace ltcbench;
using bench::Program;

namespace
{

constexpr const char *description =
    R"(Measures how LTCReader's decoder reads timecode under graded impairments, and compares it with libltc's.
Prints a line of JSON for each recording; bench/figures.py makes tables and pictures of them.

Exit code: 0; 1 when LTCReader gave a wrong timecode; 2 when something was wrong with the options or a file.)";

constexpr int hopelessAfter = 2; // grades in a row that libltc does not read once: it is not asked any more

QString text(const std::string &text)
{
    return QString::fromStdString(text);
}

bool isOurs(const Reader &reader)
{
    return &reader == &allReaders.front();
}

/// A run of all readers, or of ours alone.
class Measurement
{
public:
    Measurement(std::uint64_t seed, bool compares) : seed(seed), compares(compares) {}

    /// Has \a files recordings of each grade read; \a kind names the lines.
    void measure(const QString &kind, const Curve &curve, std::uint64_t files);

    bool wrong = false; ///< an answer of ours was

private:
    QJsonObject answersTo(const Case &recording, const std::string &name);

    std::uint64_t seed;
    bool compares;                            ///< read with libltc too
    std::map<const char *, int> rightOnes;    ///< of a grade, by reader
    std::map<const char *, int> hopelessOnes; ///< grades in a row without a right answer, by reader
};

/// What each reader says of \a recording. A wrong answer of ours is reported at once.
QJsonObject Measurement::answersTo(const Case &recording, const std::string &name)
{
    QJsonObject answers;
    for (const Reader &reader : allReaders) {
        if (!isOurs(reader) && (!compares || hopelessOnes[reader.title] >= hopelessAfter))
            continue;
        const std::optional<Answer> answer = reader.read(recording);
        const Verdict verdict = judge(recording, answer);
        QJsonObject figures{{"verdict", text(nameOf(verdict))}};
        if (answer && recording.truth) {
            const Truth &truth = *recording.truth;
            figures.insert("rate", isRateRight(truth, *answer));
            figures.insert("count", answer->rate.dropFrame == truth.signal.rate.dropFrame);
            figures.insert("channel", answer->channel == truth.channel);
            if (verdict == Verdict::Right && truth.speedKnown)
                figures.insert("error", positionError(truth, *answer));
        }
        answers.insert(reader.title, figures);
        rightOnes[reader.title] += verdict == Verdict::Right ? 1 : 0;
        if (isOurs(reader) && verdict == Verdict::Wrong) {
            wrong = true;
            bench::report(
                text("WRONG " + name + ": " + textOfTruth(recording) + " was read as " + textOf(answer)));
        }
    }
    return answers;
}

void Measurement::measure(const QString &kind, const Curve &curve, std::uint64_t files)
{
    hopelessOnes.clear();
    for (std::size_t grade = 0; grade < curve.grades.size(); ++grade) {
        rightOnes.clear();
        for (std::uint64_t file = 0; file < files; ++file) {
            const std::string name = nameOfRecording(curve, grade, file);
            bench::print(kind, {{"section", text(curve.section)},
                                {"curve", text(curve.name)},
                                {"unit", text(curve.unit)},
                                {"graded", curve.graded},
                                {"grade", curve.grades[grade]},
                                {"case", text(name)},
                                {"readers", answersTo(recordingOf(curve, seed, grade, file), name)}});
        }
        for (const Reader &reader : allReaders)
            hopelessOnes[reader.title] =
                curve.graded && rightOnes[reader.title] == 0 ? hopelessOnes[reader.title] + 1 : 0;
    }
}

template <typename Work>
double cpuMilliseconds(Work work)
{
    const std::clock_t before = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
}

void measureCost(const Curve &curve, std::uint64_t seed, std::uint64_t files)
{
    for (std::uint64_t file = 0; file < files; ++file) {
        const Case recording = recordingOf(curve, seed, 0, file);
        bench::print("cost", {{"curve", text(curve.name)},
                              {"LTCReader", cpuMilliseconds([&] { readWithOurs(recording); })},
                              {"libltc", cpuMilliseconds([&] { decodePlainly(recording); })}});
    }
}

bool isWanted(const QStringList &only, const Curve &curve)
{
    return only.isEmpty() || std::any_of(only.cbegin(), only.cend(), [&](const QString &part) {
               return text(curve.section).contains(part) || text(curve.name).contains(part);
           });
}

int measureAll(const Program &program)
{
    const QStringList only = program.texts("only");
    const quint64 files = program.number("files", 0);
    const quint64 negatives = program.number("negatives", 0);
    const quint64 seed = program.number("seed", 0);
    Measurement measurement(seed, !program.isSet("ours"));
    program.printRun();
    for (const testsignals::LossyCodec &codec : testsignals::lossyCodecs()) {
        if (isWanted(only, {"Codecs", codec.name, {}, {}, true, {}}) && !testsignals::isAvailable(codec))
            bench::report(
                text("left out: " + codec.name + " (this ffmpeg has no encoder \"" + codec.encoder + "\")"));
    }
    for (const Curve &curve : allCurves()) {
        if (isWanted(only, curve))
            measurement.measure("reading", curve, files);
    }
    for (const Curve &sound : allSounds()) {
        if (isWanted(only, sound))
            measurement.measure("sound", sound, negatives);
    }
    for (const Curve &kind : costKinds()) {
        if (only.isEmpty() || only.contains("Cost"))
            measureCost(kind, seed, files);
    }
    return measurement.wrong ? 1 : 0;
}

int readCase(const Program &program)
{
    const QString name = program.text("case");
    const auto recording = recordingNamed(name.toStdString(), program.number("seed", 0));
    if (!recording)
        throw bench::Failure("there is no case \"" + name + '"');
    if (program.isSet("save"))
        save(*recording, program.text("save").toStdString());
    std::cout << "there: " << textOfTruth(*recording) << "\n";
    bool wrong = false;
    for (const Reader &reader : allReaders) {
        const std::optional<Answer> answer = reader.read(*recording);
        const Verdict verdict = judge(*recording, answer);
        wrong = wrong || (isOurs(reader) && verdict == Verdict::Wrong);
        std::cout << reader.title << ": " << textOf(answer) << ": " << nameOf(verdict) << "\n";
    }
    return wrong ? 1 : 0;
}

int printList()
{
    for (const auto *curves : {&allCurves(), &allSounds()}) {
        for (const Curve &curve : *curves)
            std::cout << curve.section << ": " << curve.name << "\n";
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Program program("ltc-benchmark", description);
    program.addOption(
        "only",
        "Only curves, sounds or parts whose name or section contains it; may be given several times "
        "(parts: \"Without timecode\", \"Cost\")",
        "text");
    program.addOption("files", "Recordings for each grade of a curve", "number", "20");
    program.addOption("negatives", "Recordings for each kind of sound without timecode", "number", "200");
    program.addOption("seed", "Start of all random numbers", "number", "1");
    program.addSwitch("ours", "Without libltc, for a faster run");
    program.addSwitch("list", "Prints the names of all curves and sounds");
    program.addOption("case", "Reads one recording by the name that a wrong answer is reported with", "name");
    program.addOption("save", "With --case: writes that recording as a WAV file", "file");
    return program.run([&program] {
        if (program.isSet("list"))
            return printList();
        return program.isSet("case") ? readCase(program) : measureAll(program);
    });
}

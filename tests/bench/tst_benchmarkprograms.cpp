// SPDX-License-Identifier: MIT
// The benchmarks as programs: not how fast anything is, but that they run and that bench/figures.py reads
// their results.
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <array>
#include <utility>

namespace
{

constexpr std::array programs{"window-benchmark", "tools-benchmark", "reader-benchmark", "ltc-benchmark",
                              "ltc-odd-benchmark"};
constexpr int patience = 240'000; // [ms]

struct Run {
    int exitCode;
    QString output;
    QString error;
};

Run run(const QString &program, const QStringList &arguments, const QString &input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input.toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(patience) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

class TestBenchmarkPrograms : public QObject
{
    Q_OBJECT

private slots:
    void helpIsPrinted_data();
    void helpIsPrinted();
    void aWrongOptionGetsOneLine_data();
    void aWrongOptionGetsOneLine();
    void figuresAreRead_data();
    void figuresAreRead();
};

void TestBenchmarkPrograms::helpIsPrinted_data()
{
    QTest::addColumn<QString>("program");
    for (const char *program : programs)
        QTest::newRow(program) << program;
}

void TestBenchmarkPrograms::helpIsPrinted()
{
    QFETCH(QString, program);
    const Run help = run(program, {"--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.output.contains("--help"));
}

void TestBenchmarkPrograms::aWrongOptionGetsOneLine_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    for (const char *program : programs) {
        QTest::addRow("%s, unknown option", program) << program << QStringList{"--fast"};
        QTest::addRow("%s, stray word", program) << program << QStringList{"now"};
    }
    QTest::newRow("no number of rows") << "window-benchmark" << QStringList{"--rows", "many"};
    QTest::newRow("no files") << "tools-benchmark" << QStringList{"--files", "0"};
    QTest::newRow("several numbers of rounds") << "reader-benchmark" << QStringList{"--rounds", "1,2"};
    QTest::newRow("no seed") << "ltc-benchmark" << QStringList{"--seed", "first"};
    QTest::newRow("no such recording") << "ltc-benchmark" << QStringList{"--case", "unheard of/0/0"};
    QTest::newRow("a value is missing") << "ltc-odd-benchmark" << QStringList{"--files"};
    QTest::newRow("no name of a recording") << "ltc-odd-benchmark" << QStringList{"--case", "7"};
    QTest::newRow("nothing of that name") << "ltc-odd-benchmark" << QStringList{"--only", "unheard of"};
}

void TestBenchmarkPrograms::aWrongOptionGetsOneLine()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    const Run wrong = run(program, arguments);
    QCOMPARE(wrong.exitCode, 2);
    QCOMPARE(wrong.output, QString());
    QVERIFY2(wrong.error.startsWith(program + ": ") && wrong.error.count('\n') == 1, qPrintable(wrong.error));
}

void TestBenchmarkPrograms::figuresAreRead_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("tables");
    const auto row = [](const char *program, const QString &arguments, const QStringList &tables) {
        QTest::newRow(program) << program << arguments.split(' ') << tables;
    };
    row("window-benchmark", "--rows 20 --foreign 300",
        {"ordinary shoot: CPU time", "all of one moment: longest block", "ordinary shoot: heap",
         "A folder tree"});
    row("tools-benchmark", "--files 4 --rounds 1",
        {"import: time", "import: memory", "import: the same by ostrel-batch"});
    row("tools-benchmark", "--exports --files 4 --rounds 1", {"export: time", "export: memory"});
    row("reader-benchmark", "--rounds 2", {"LTCReader: time"});
    row("ltc-benchmark", "--files 1 --negatives 1 --only polarity --only silence --only durations",
        {"Signal: polarity", "Formats: durations", "50 % points", "Recordings without", "Totals"});
    row("ltc-benchmark", "--ours --files 1 --only Cost", {"CPU time for 3 s"});
    row("ltc-odd-benchmark", "--files 8 --only polarity",
        {"Behaviour", "Disturbance", "Length", "Confidence"});
    row("ltc-odd-benchmark", "--edge --files 2 --jobs 1", {"Behaviour", "Confidence"});
    row("ltc-odd-benchmark", "--negatives 2", {"Behaviour"});
}

void TestBenchmarkPrograms::figuresAreRead()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, tables);
    const Run done = run(program, arguments);
    QVERIFY2(done.exitCode == 0, qPrintable(done.error));
    const QJsonObject first = QJsonDocument::fromJson(done.output.section('\n', 0, 0).toUtf8()).object();
    QCOMPARE(first.value("command").toString(), program + ' ' + arguments.join(' '));

    const Run report = run(PROJECT_FOLDER "/bench/figures.py", {}, done.output);
    QVERIFY2(report.exitCode == 0 || report.exitCode == 1, qPrintable(report.error)); // limits may be missed
    for (const QString &table : std::as_const(tables))
        QVERIFY2(report.output.contains('\n' + table), qPrintable(report.output));
}

QTEST_GUILESS_MAIN(TestBenchmarkPrograms)
#include "tst_benchmarkprograms.moc"

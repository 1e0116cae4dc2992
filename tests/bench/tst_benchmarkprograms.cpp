// SPDX-License-Identifier: MIT
// The benchmarks as programs: not how fast anything is, but that they run and what form their results have.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <array>

namespace
{

constexpr std::array programs{"window-benchmark", "import-benchmark", "export-benchmark", "reader-benchmark"};
constexpr int patience = 240'000; // [ms]

struct Run {
    int exitCode;
    QString output;
    QString error;
};

Run run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(patience) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
    void figuresComeInTheirForm_data();
    void figuresComeInTheirForm();
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
    for (const char *option : {"--help", "--json", "--plot"})
        QVERIFY2(help.output.contains(option), option);
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
    QTest::newRow("no files") << "import-benchmark" << QStringList{"--files", "0"};
    QTest::newRow("several numbers of rounds") << "reader-benchmark" << QStringList{"--rounds", "1,2"};
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

void TestBenchmarkPrograms::figuresComeInTheirForm_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("window") << "window-benchmark" << QStringList{"--rows", "20", "--foreign", "300"};
    QTest::newRow("import") << "import-benchmark" << QStringList{"--files", "4", "--rounds", "1"};
    QTest::newRow("export") << "export-benchmark" << QStringList{"--files", "4", "--rounds", "1"};
    QTest::newRow("reader") << "reader-benchmark" << QStringList{"--rounds", "2"};
}

void TestBenchmarkPrograms::figuresComeInTheirForm()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    const QTemporaryDir folder;
    const QString json = folder.filePath("figures.json");
    const QString plot = folder.filePath("figures.svg");
    const Run done = run(program, arguments + QStringList{"--json", json, "--plot", plot});
    QVERIFY2(done.exitCode == 0 || done.exitCode == 1,
             qPrintable(done.error)); // however busy the machine is
    QVERIFY(done.output.startsWith(program));
    QVERIFY(contentOf(plot).startsWith("<svg"));

    const QJsonObject figures = QJsonDocument::fromJson(contentOf(json)).object();
    for (const char *key : {"benchmark", "command", "date", "machine"})
        QVERIFY2(!figures.value(key).toString().isEmpty(), key);
    const QJsonArray tables = figures.value("tables").toArray();
    QVERIFY(!tables.isEmpty());
    for (const QJsonValue &table : tables) {
        const auto columns = table["columns"].toArray().size();
        const QJsonArray rows = table["rows"].toArray();
        QVERIFY(columns > 1 && !rows.isEmpty());
        for (const QJsonValue &row : rows)
            QCOMPARE(row.toArray().size(), columns);
    }
    const QJsonArray checks = figures.value("checks").toArray();
    QVERIFY(!checks.isEmpty());
    for (const QJsonValue &check : checks) {
        QVERIFY(done.output.contains(check["name"].toString()));
        QVERIFY(check["value"].isDouble() && check["limit"].isDouble());
        QCOMPARE(check["holds"].toBool(), check["value"].toDouble() <= check["limit"].toDouble());
    }
}

QTEST_GUILESS_MAIN(TestBenchmarkPrograms)
#include "tst_benchmarkprograms.moc"

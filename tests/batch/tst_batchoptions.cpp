// SPDX-License-Identifier: MIT
#include "batch/batchoptions.h"

#include <QTest>

class TestBatchOptions : public QObject
{
    Q_OBJECT

private slots:
    void aPlainReadTakesTheDefaults();
    void reportsAndPathsKeepTheirOrder();
    void theReadingIsChosen_data();
    void theReadingIsChosen();
    void wrongUsageIsRefused_data();
    void wrongUsageIsRefused();
    void questionsAreAnswered();
};

namespace
{

bool isThere(const QString &path)
{
    return path != "missing";
}

BatchCommand parse(const QStringList &arguments)
{
    return parseBatchCommand(QStringList{"ostrel-batch"} + arguments, isThere);
}

BatchOptions optionsOf(const QStringList &arguments)
{
    const BatchCommand command = parse(arguments);
    const auto *options = std::get_if<BatchOptions>(&command);
    return options ? *options : BatchOptions();
}

} // namespace

void TestBatchOptions::aPlainReadTakesTheDefaults()
{
    const BatchOptions options = optionsOf({"read", "card"});
    QCOMPARE(options.paths, QStringList{"card"});
    QCOMPARE(options.reports, QStringList());
    QVERIFY(!options.reading);
    QCOMPARE(options.jobs, 45);
    QVERIFY(!options.quiet);
}

void TestBatchOptions::reportsAndPathsKeepTheirOrder()
{
    const BatchOptions options = optionsOf(
        {"--quiet", "read", "--report", "a.CSV", "b", "--jobs", "3", "--report=b.json", "a", "--", "-c"});
    QCOMPARE(options.reports, (QStringList{"a.CSV", "b.json"}));
    QCOMPARE(options.paths, (QStringList{"b", "a", "-c"}));
    QCOMPARE(options.jobs, 3);
    QVERIFY(options.quiet);
}

void TestBatchOptions::theReadingIsChosen_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<int>("channel");
    QTest::addColumn<double>("frameRate");
    QTest::newRow("algorithm alone") << QStringList{"--algorithm", "slope"} << 4 << -1 << -1.0;
    QTest::newRow("in capitals") << QStringList{"--algorithm", "LOW"} << 1 << -1 << -1.0;
    QTest::newRow("channels count from 1") << QStringList{"--channel", "2"} << 0 << 1 << -1.0;
    QTest::newRow("the words of the window") << QStringList{"--channel", "channel 8"} << 0 << 7 << -1.0;
    QTest::newRow("a whole rate") << QStringList{"--frame-rate", "25"} << 0 << -1 << 25.0;
    QTest::newRow("a rate as in the window") << QStringList{"--frame-rate", "29.97 FPS"} << 0 << -1 << 29.97;
    QTest::newRow("three digits") << QStringList{"--frame-rate", "23.976"} << 0 << -1 << 23.98;
    QTest::newRow("all automatic") << QStringList{"--frame-rate", "auto",        "--channel",
                                                  "auto",         "--algorithm", "auto"}
                                   << 0 << -1 << -1.0;
    QTest::newRow("all chosen") << QStringList{"--frame-rate", "30.00", "--channel", "1",
                                               "--algorithm",  "high"}
                                << 3 << 0 << 30.0;
}

void TestBatchOptions::theReadingIsChosen()
{
    QFETCH(QStringList, arguments);
    const BatchOptions options = optionsOf(QStringList{"read", "card"} + arguments);
    QVERIFY(options.reading);
    QTEST(options.reading->algorithm, "algorithm");
    QTEST(options.reading->channel, "channel");
    QTEST(options.reading->frameRate, "frameRate");
}

void TestBatchOptions::wrongUsageIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("reason");
    const QStringList read{"read", "card"};
    QTest::newRow("nothing") << QStringList{} << "give a command; see --help";
    QTest::newRow("no path") << QStringList{"read"} << "give files or folders";
    QTest::newRow("another command") << QStringList{"write", "card"} << "no such command: write; see --help";
    QTest::newRow("a path that is not there")
        << QStringList{"read", "card", "missing"} << "no such file or folder: missing";
    QTest::newRow("an unknown option") << read + QStringList{"--fast"} << "Unknown option 'fast'.";
    QTest::newRow("a report of another kind")
        << read + QStringList{"--report", "a.pdf"} << "a report ends in .csv or .json, not \"a.pdf\"";
    QTest::newRow("no job") << read + QStringList{"--jobs", "0"} << "--jobs cannot be \"0\"";
    QTest::newRow("too many jobs") << read + QStringList{"--jobs", "46"} << "--jobs cannot be \"46\"";
    QTest::newRow("jobs in words") << read + QStringList{"--jobs", "two"} << "--jobs cannot be \"two\"";
    QTest::newRow("channel 0") << read + QStringList{"--channel", "0"} << "--channel cannot be \"0\"";
    QTest::newRow("channel 9") << read + QStringList{"--channel", "9"} << "--channel cannot be \"9\"";
    QTest::newRow("a rate that is no rate of timecode")
        << read + QStringList{"--frame-rate", "48"} << "--frame-rate cannot be \"48\"";
    QTest::newRow("an unknown algorithm")
        << read + QStringList{"--algorithm", "best"} << "--algorithm cannot be \"best\"";
}

void TestBatchOptions::wrongUsageIsRefused()
{
    QFETCH(QStringList, arguments);
    const BatchCommand command = parse(arguments);
    const auto *refusal = std::get_if<BatchRefusal>(&command);
    QVERIFY(refusal);
    QTEST(refusal->reason, "reason");
}

void TestBatchOptions::questionsAreAnswered()
{
    const BatchCommand help = parse({"--help"});
    QVERIFY(std::get<BatchAnswer>(help).text.contains("--frame-rate"));
    QCOMPARE(std::get<BatchAnswer>(parse({"--version"})).text, QString("ostrel-batch 1.0\n"));
}

QTEST_GUILESS_MAIN(TestBatchOptions)
#include "tst_batchoptions.moc"

// SPDX-License-Identifier: MIT
#include "app/records/optiontables.h"
#include "batch/batchoptions.h"
#include "batch/exitcode.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

class TestBatchOptions : public QObject
{
    Q_OBJECT

private slots:
    void aPlainReadTakesTheDefaults();
    void reportsAndPathsKeepTheirOrder();
    void reportsAreJoined();
    void theReadingIsChosen_data();
    void theReadingIsChosen();
    void anExportIsChosen_data();
    void anExportIsChosen();
    void wrongUsageIsRefused_data();
    void wrongUsageIsRefused();
    void questionsAreAnswered();
    void everyOptionIsDocumented_data();
    void everyOptionIsDocumented();
};

namespace
{

PathKind kindOf(const QString &path)
{
    if (path == "missing")
        return PathKind::Nothing;
    return path == "out" ? PathKind::Folder : PathKind::File;
}

BatchCommand parse(const QStringList &arguments)
{
    return parseBatchCommand(QStringList{"ostrel-batch"} + arguments, kindOf);
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
    QVERIFY(!options.deep);
    QVERIFY(!options.quiet);
}

void TestBatchOptions::reportsAndPathsKeepTheirOrder()
{
    const BatchOptions options = optionsOf({"--quiet", "read", "--deep", "--report", "a.CSV", "b", "--jobs",
                                            "3", "--report=b.json", "a", "--", "-c"});
    QCOMPARE(options.reports, (QStringList{"a.CSV", "b.json"}));
    QCOMPARE(options.paths, (QStringList{"b", "a", "-c"}));
    QCOMPARE(options.jobs, 3);
    QVERIFY(options.deep);
    QVERIFY(options.quiet);
}

void TestBatchOptions::reportsAreJoined()
{
    const BatchOptions options = optionsOf({"join", "a.json", "b.json", "--report", "c.html"});
    QVERIFY(options.isJoin);
    QCOMPARE(options.paths, (QStringList{"a.json", "b.json"}));
    QCOMPARE(options.reports, QStringList{"c.html"});
    QVERIFY(!optionsOf({"read", "a.json"}).isJoin);
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
    QTest::newRow("the last of two rates counts")
        << QStringList{"--frame-rate", "24", "--frame-rate", "25"} << 0 << -1 << 25.0;
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

void TestBatchOptions::anExportIsChosen_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("videoType");
    QTest::addColumn<int>("audioType");
    QTest::addColumn<bool>("mute");
    QTest::newRow("nothing chosen") << QStringList{} << 0 << 0 << true;
    QTest::newRow("the timecode stays") << QStringList{"--keep-timecode-channel"} << 0 << 0 << false;
    QTest::newRow("sound in MXF") << QStringList{"--video-type", "mxf-mpeg2"} << 1 << 1 << true;
    QTest::newRow("deeper sound in MXF")
        << QStringList{"--video-type", "mxf-dnxhd-175", "--audio-type", "pcm24"} << 4 << 2 << true;
    const QStringList names{"pass",     "mxf-mpeg2",    "mxf-dnxhd-36",  "mxf-dnxhd-115", "mxf-dnxhd-175",
                            "mov-pass", "mov-dnxhd-36", "mov-dnxhd-115", "mov-dnxhd-175"};
    for (int code = 0; code < names.size(); ++code)
        QTest::newRow(qPrintable(names.at(code)))
            << QStringList{"--video-type", names.at(code), "--audio-type", "pcm16"} << code << 1 << true;
    for (auto type = exportTypes.begin(); type != exportTypes.end(); ++type)
        QTest::newRow(qPrintable("the window's " + type.key()))
            << QStringList{"--video-type", type.key(), "--audio-type", "PCM 24 bit"} << type.value() << 2
            << true;
}

void TestBatchOptions::anExportIsChosen()
{
    QFETCH(QStringList, arguments);
    const BatchOptions options = optionsOf(QStringList{"export", "--to", "out", "card"} + arguments);
    QVERIFY(options.exporting);
    QCOMPARE(options.exporting->exportDir, QString("out"));
    QTEST(options.exporting->videoType, "videoType");
    QTEST(options.exporting->audioType, "audioType");
    QTEST(options.exporting->muteAudioTC, "mute");
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
    QTest::newRow("a report of another kind") << read + QStringList{"--report", "a.pdf"}
                                              << "a report ends in .csv, .json, .ale or .html, not \"a.pdf\"";
    QTest::newRow("no job") << read + QStringList{"--jobs", "0"} << "--jobs cannot be \"0\"";
    QTest::newRow("too many jobs") << read + QStringList{"--jobs", "46"} << "--jobs cannot be \"46\"";
    QTest::newRow("jobs in words") << read + QStringList{"--jobs", "two"} << "--jobs cannot be \"two\"";
    QTest::newRow("channel 0") << read + QStringList{"--channel", "0"} << "--channel cannot be \"0\"";
    QTest::newRow("channel 9") << read + QStringList{"--channel", "9"} << "--channel cannot be \"9\"";
    QTest::newRow("a rate that is no rate of timecode")
        << read + QStringList{"--frame-rate", "48"} << "--frame-rate cannot be \"48\"";
    QTest::newRow("an unknown algorithm")
        << read + QStringList{"--algorithm", "best"} << "--algorithm cannot be \"best\"";
    const QStringList exporting{"export", "--to", "out", "card"};
    QTest::newRow("an export to nowhere") << QStringList{"export", "card"} << "give a folder with --to";
    QTest::newRow("an export into a folder that is not there")
        << QStringList{"export", "--to", "missing", "card"} << "no such folder: missing";
    QTest::newRow("an export into a file")
        << QStringList{"export", "--to", "file", "card"} << "no such folder: file";
    QTest::newRow("an unknown picture")
        << exporting + QStringList{"--video-type", "avi"} << "--video-type cannot be \"avi\"";
    QTest::newRow("MXF holds no other sound")
        << exporting + QStringList{"--video-type", "mxf-mpeg2", "--audio-type", "pass"}
        << "--audio-type cannot be \"pass\" in MXF";
    const QStringList joining{"join", "a.json"};
    QTest::newRow("a join without a new report") << joining << "give the new report with --report";
    QTest::newRow("a join reads nothing")
        << joining + QStringList{"--report", "b.csv", "--channel", "1"} << "\"join\" takes no --channel";
    QTest::newRow("a read writes nothing") << read + QStringList{"--to", "out"} << "\"read\" takes no --to";
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
    const QString help = std::get<BatchAnswer>(parse({"--help"})).text;
    QVERIFY(help.contains("--frame-rate"));
    const QMap<ExitCode, QString> endings{{ExitCode::Done, "done"},
                                          {ExitCode::SomeFailed, "some files failed"},
                                          {ExitCode::WrongUsage, "wrong usage"},
                                          {ExitCode::ToolMissing, "a tool is missing"}};
    for (auto ending = endings.begin(); ending != endings.end(); ++ending) {
        const QString text = QString("%1 %2").arg(static_cast<int>(ending.key())).arg(ending.value());
        QVERIFY2(help.simplified().contains(text), qPrintable(text));
    }
    QCOMPARE(std::get<BatchAnswer>(parse({"--version"})).text, QString("ostrel-batch 1.0\n"));
}

void TestBatchOptions::everyOptionIsDocumented_data()
{
    QTest::addColumn<QString>("page");
    for (const char *page :
         {"docs/manual.md", "packaging/ostrel-batch.1", "packaging/linux/ostrel-batch.bash"})
        QTest::newRow(page) << page;
}

void TestBatchOptions::everyOptionIsDocumented()
{
    QFETCH(QString, page);
    QFile file(QString(PROJECT_FOLDER "/") + page);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll()).remove('\\'); // of the manual page
    static const QRegularExpression option("--[a-z-]+");
    auto options = option.globalMatch(std::get<BatchAnswer>(parse({"--help"})).text);
    int count = 0;
    for (; options.hasNext(); ++count) {
        const QString name = options.next().captured();
        QVERIFY2(text.contains(name), qPrintable(name));
    }
    QVERIFY(count >= 13);
}

QTEST_GUILESS_MAIN(TestBatchOptions)
#include "tst_batchoptions.moc"

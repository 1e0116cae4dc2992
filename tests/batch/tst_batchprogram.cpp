// SPDX-License-Identifier: MIT
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/longwait.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

/// The whole program with fake tools: what it shows, writes and ends with.
class TestBatchProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aDayIsReadAndReported();
    void theReaderGetsWhatWasChosen();
    void lateTimecodeIsCountedBack();
    void onlyFilesWithoutTimecodeAreSearched();
    void searchesKeepToTheJobLimit();
    void aSearchThatFailsEndsWithOne_data();
    void aSearchThatFailsEndsWithOne();
    void anInterruptedSearchIsNoAnswer();
    void aFileThatFailsIsNamedAndEndsWithOne();
    void filesWithoutTimecodeAreNoFailure();
    void quietShowsProblemsOnly();
    void wrongUsageEndsWithTwo();
    void aReportThatCannotBeWrittenIsRefusedAtOnce();
    void missingToolsEndWithThree();
    void interruptedOnceItReportsWhatIsDone();
    void interruptedTwiceItEndsAtOnce();
    void aFolderWithoutMediaIsDone();
    void reportsOfSeveralRunsJoin();
    void aDayIsExported();
    void anExportThatFailsLeavesNoFileOfItsName();
    void whatFailedIsReplacedByARunThatResumes();
    void whatCannotBeReadIsNotExported();
    void anInterruptedExportLeavesNoHalfFile();

private:
    struct Run {
        int exitCode = -1;
        QString output;
        QString errors;
    };
    Run run(const QStringList &arguments, const QProcessEnvironment &environment = {}) const;
    void prepare(QProcess &process, const QStringList &arguments, QProcessEnvironment environment = {}) const;
    bool startAndWaitFor(const char *text, QProcess &process, const QStringList &arguments) const;
    QString makeFile(const QString &name, const QJsonObject &plan = {}) const;
    QJsonArray reported(const QString &path) const;

    QString out() const { return target->path(); }

    std::unique_ptr<QTemporaryDir> media;
    std::unique_ptr<QTemporaryDir> target; ///< of exports
    std::unique_ptr<QTemporaryDir> system; ///< the system's temporary folder for the program
};

namespace
{

QJsonObject plan(const QString &job, const QJsonObject &part)
{
    return {{job, part}};
}

} // namespace

void TestBatchProgram::init()
{
    media = std::make_unique<QTemporaryDir>();
    target = std::make_unique<QTemporaryDir>();
    system = std::make_unique<QTemporaryDir>();
}

void TestBatchProgram::cleanup()
{
    QCOMPARE(QDir(system->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList()); // nothing is left behind
}

void TestBatchProgram::prepare(QProcess &process, const QStringList &arguments,
                               QProcessEnvironment environment) const
{
    if (environment.isEmpty())
        environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", system->path());
    process.setProcessEnvironment(environment);
    process.setProgram(BATCH);
    process.setArguments(arguments);
}

TestBatchProgram::Run TestBatchProgram::run(const QStringList &arguments,
                                            const QProcessEnvironment &environment) const
{
    QProcess process;
    prepare(process, arguments, environment);
    process.start();
    if (!process.waitForFinished(longWait))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/// Starts \a process with \a arguments; returns whether it has shown \a text in its table, and runs on.
bool TestBatchProgram::startAndWaitFor(const char *text, QProcess &process,
                                       const QStringList &arguments) const
{
    prepare(process, arguments);
    process.start();
    QByteArray output;
    const auto isShown = [&] {
        output += process.readAllStandardOutput();
        return output.contains(text);
    };
    return QTest::qWaitFor(isShown, longWait);
}

QString TestBatchProgram::makeFile(const QString &name, const QJsonObject &plan) const
{
    const QString path = media->filePath(name);
    if (!QDir().mkpath(QFileInfo(path).path()) || !QFile(path).open(QIODevice::WriteOnly))
        qFatal("cannot make %s", qPrintable(path));
    if (!plan.isEmpty())
        faketools::setPlan(path, plan);
    return path;
}

QJsonArray TestBatchProgram::reported(const QString &path) const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object()["files"].toArray();
}

void TestBatchProgram::aDayIsReadAndReported()
{
    makeFile("A/one.mov");
    makeFile("B/two.mxf", plan("read", {{"exitCode", 205}}));
    makeFile("B/notes.txt");
    const QString report = media->filePath("day.json");
    const Run day = run({"read", media->path(), "--report", report});
    QCOMPARE(day.exitCode, 0);
    QStringList lines = day.output.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.takeFirst().simplified(), QString("File File TC Audio TC"));
    lines.removeFirst(); // the ruler
    lines.sort();
    QCOMPARE(lines.at(0).simplified(), QString("one.mov file TC not found 10:00:00:00@25.00 on ch. 1"));
    QCOMPARE(lines.at(1).simplified(), QString("two.mxf file TC not found audio TC not found"));
    QVERIFY(day.errors.contains("reading: 100 %\n"));

    const QJsonArray records = reported(report);
    QCOMPARE(records.size(), 2);
    QCOMPARE(records.at(0).toObject()["path"].toString(), media->filePath("A/one.mov"));
    QCOMPARE(records.at(0).toObject()["audioTimecode"].toString(), QString("10:00:00:00"));
    QCOMPARE(records.at(1).toObject()["result"].toString(), QString("none"));
}

void TestBatchProgram::theReaderGetsWhatWasChosen()
{
    const QString path = makeFile("a.mov");
    QCOMPARE(run({"read", path, "--algorithm", "mid", "--channel", "2", "--frame-rate", "29.97"}).exitCode,
             0);
    const auto calls = faketools::calls(path, "read");
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls.first().arguments.mid(1), (QStringList{"-c1", "-f29.97", "-aMID"}));
    QCOMPARE(faketools::calls(path, "extract").size(), 1); // it is not read twice
}

// The fake files last ten seconds: four windows.

void TestBatchProgram::lateTimecodeIsCountedBack()
{
    const QString path = makeFile("a.mov");
    const QJsonObject none{{"exitCode", 205}};
    const auto at = [](const QString &timecode, qint64 seconds) {
        return QJsonObject{{"json", QJsonObject{{"Timecode", timecode},
                                                {"DropFrame", false},
                                                {"NTSC", false},
                                                {"FrameRateFound", 25},
                                                {"FrameRateBaseFound", 25},
                                                {"ChannelFound", 1},
                                                {"SamplesSinceMidnight", seconds * 48000}}}};
    };
    const QJsonObject sixth = at("10:00:06:00", 36006);
    const QJsonObject ninth = at("10:00:09:00", 36009);
    faketools::setPlan(path, {{"read", QJsonArray{none, none, none, sixth, sixth, ninth}}});
    const QString report = media->filePath("day.json");
    const Run deep = run({"read", "--deep", path, "--algorithm", "mid", "--report", report});
    QCOMPARE(deep.exitCode, 0);
    QVERIFY2(deep.output.contains("10:00:00:00@25.00 on ch. 2, at 6 s"), qPrintable(deep.output));
    QVERIFY(deep.errors.contains("searching: 100 %\n"));
    const QJsonObject record = reported(report).at(0).toObject();
    QCOMPARE(record["audioTimecode"].toString(), QString("10:00:00:00"));
    QCOMPARE(record["samplesSinceMidnight"].toDouble(), 36000.0 * 48000);
    QCOMPARE(record["foundAtSecond"].toInt(), 6);

    const auto extractions = faketools::calls(path, "extract");
    QCOMPARE(extractions.size(), 5); // the first seconds, three windows, and the last one exactly
    QVERIFY(!extractions.at(0).arguments.contains("-nostdin"));
    for (const auto &read : faketools::calls(path, "read"))
        QCOMPARE(read.arguments.mid(1), QStringList{"-aMID"});
}

void TestBatchProgram::onlyFilesWithoutTimecodeAreSearched()
{
    const QString good = makeFile("good.mov");
    const QString none = makeFile("none.mov", plan("read", {{"exitCode", 205}}));
    const QString bad = makeFile("bad.mov", plan("read", {{"exitCode", 201}}));
    const QString report = media->filePath("day.json");
    QCOMPARE(run({"read", "--deep", media->path(), "--report", report}).exitCode, 1);
    QCOMPARE(faketools::calls(good, "extract").size(), 1);
    QCOMPARE(faketools::calls(bad, "extract").size(), 1);
    QCOMPARE(faketools::calls(none, "extract").size(), 5);
    const QJsonObject record = reported(report).at(2).toObject();
    QCOMPARE(record["result"].toString(), QString("none"));
    QCOMPARE(record["reason"].toString(), QString("audio TC not found, searched to the end"));

    QCOMPARE(run({"read", none}).exitCode, 0);
    QCOMPARE(faketools::calls(none, "extract").size(), 6); // not without the option
}

void TestBatchProgram::searchesKeepToTheJobLimit()
{
    for (const char *name : {"a.mov", "b.mov", "c.mov"})
        makeFile(name, plan("read", {{"exitCode", 205}}));
    const QString log = media->filePath("log");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("OSTREL_FAKE_LOG", log);
    QCOMPARE(run({"read", "--deep", "--jobs", "1", media->path()}, environment).exitCode, 0);
    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
    QCOMPARE(lines.size(), 3 * (3 + 4 * 2) * 2); // probed, read and searched; starts and ends
    for (int i = 0; i < lines.size(); ++i) {
        const QString event = QJsonDocument::fromJson(lines.at(i)).object()["event"].toString();
        QCOMPARE(event, QString(i % 2 == 0 ? "start" : "end")); // one after the other
    }
}

void TestBatchProgram::aSearchThatFailsEndsWithOne_data()
{
    QTest::addColumn<QJsonObject>("extraction");
    QTest::newRow("exit code 1") << QJsonObject{{"exitCode", 1}};
    QTest::newRow("crash, with something written")
        << QJsonObject{{"actions", QJsonArray{QJsonObject{{"work", true}}}}, {"crash", true}};
}

void TestBatchProgram::aSearchThatFailsEndsWithOne()
{
    QFETCH(QJsonObject, extraction);
    const QString path =
        makeFile("a.mov", {{"read", QJsonObject{{"exitCode", 205}}},
                           {"extract", QJsonArray{QJsonObject(), QJsonObject(), extraction}}});
    const Run deep = run({"export", "--no-verify", "--to", out(), "--deep", path});
    QCOMPARE(deep.exitCode, 1);
    QVERIFY2(deep.errors.contains("a.mov: not searched to the end: the tools have failed at second 3\n"),
             qPrintable(deep.errors));
    QVERIFY(faketools::calls(path, "export").isEmpty()); // its timecode would be missing
}

void TestBatchProgram::anInterruptedSearchIsNoAnswer()
{
    makeFile("done.mov");
    const QString path =
        makeFile("hanging.mov", {{"read", QJsonObject{{"exitCode", 205}}},
                                 {"extract", QJsonArray{QJsonObject(), QJsonObject{{"hang", true}}}}});
    QProcess process;
    QVERIFY(startAndWaitFor("done.mov", process, {"read", "--deep", media->path()}));
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(path, "extract").size(), 2, longWait);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(longWait));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().contains("hanging.mov: not searched to the end\n"));
}

void TestBatchProgram::aFileThatFailsIsNamedAndEndsWithOne()
{
    makeFile("good.mov");
    const QString bad = makeFile("bad.mov", plan("probe", {{"exitCode", 1}}));
    const Run both = run({"read", media->path()});
    QCOMPARE(both.exitCode, 1);
    QVERIFY(both.errors.contains("ostrel-batch: " + bad + ": error while reading file data\n"));
    QVERIFY(both.output.contains("good.mov"));
}

void TestBatchProgram::filesWithoutTimecodeAreNoFailure()
{
    makeFile("a.mov", plan("read", {{"exitCode", 205}}));
    QCOMPARE(run({"read", media->path()}).exitCode, 0);
}

void TestBatchProgram::quietShowsProblemsOnly()
{
    makeFile("good.mov");
    const Run good = run({"read", "--quiet", media->path()});
    QCOMPARE(good.output + good.errors, QString());
    const QString bad = makeFile("bad.mov", plan("probe", {{"exitCode", 1}}));
    const Run both = run({"read", "--quiet", media->path()});
    QCOMPARE(both.output, QString());
    QCOMPARE(both.errors, "ostrel-batch: " + bad + ": error while reading file data\n");
}

void TestBatchProgram::wrongUsageEndsWithTwo()
{
    const Run wrong = run({"read", media->filePath("nowhere")});
    QCOMPARE(wrong.exitCode, 2);
    QCOMPARE(wrong.errors, "ostrel-batch: no such file or folder: " + media->filePath("nowhere") + '\n');
    QCOMPARE(wrong.output, QString());
}

void TestBatchProgram::aReportThatCannotBeWrittenIsRefusedAtOnce()
{
    const QString path = makeFile("a.mov");
    const Run refused = run({"read", path, "--report", media->filePath("none/day.csv")});
    QCOMPARE(refused.exitCode, 2);
    QVERIFY(refused.errors.contains("cannot write the report"));
    QVERIFY(faketools::calls(path).isEmpty());
}

void TestBatchProgram::missingToolsEndWithThree()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH", media->path());
    // A copy of the program in a folder of its own has no tools next to it.
    const QString copy = media->filePath("ostrel-batch");
    QVERIFY(QFile::copy(BATCH, copy));
    QProcess process;
    prepare(process, {"read", media->path()}, environment);
    process.setProgram(copy);
    process.start();
    QVERIFY(process.waitForFinished(longWait));
    QCOMPARE(process.exitCode(), 3);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("ostrel-batch: not installed: ffprobe.exe, ffmpeg.exe, LTCReader.exe\n"));
}

void TestBatchProgram::interruptedOnceItReportsWhatIsDone()
{
    makeFile("done.mov");
    const QString hanging = makeFile("hanging.mov", plan("extract", {{"hang", true}}));
    const QString report = media->filePath("day.json");
    QProcess process;
    QVERIFY(startAndWaitFor("done.mov", process, {"read", media->path(), "--report", report}));
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(hanging, "extract").size(), 1, longWait);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(longWait));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().contains("hanging.mov: not read to the end"));
    const QJsonArray records = reported(report);
    QCOMPARE(records.size(), 2);
    QCOMPARE(records.at(0).toObject()["result"].toString(), QString("found"));
    QCOMPARE(records.at(1).toObject()["result"].toString(), QString("failed"));
    QVERIFY(!faketools::isAlive(faketools::calls(hanging, "extract").first().processId));
}

void TestBatchProgram::interruptedTwiceItEndsAtOnce()
{
    const QString hanging = makeFile("hanging.mov", plan("probe", {{"hang", true}}));
    QProcess process;
    prepare(process, {"read", media->path()});
    process.start();
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(hanging, "probe").size(), 1, longWait);
    const auto id = static_cast<pid_t>(process.processId());
    kill(id, SIGINT);
    kill(id, SIGINT);
    QVERIFY(process.waitForFinished(longWait));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(!faketools::isAlive(faketools::calls(hanging, "probe").first().processId));
}

void TestBatchProgram::aFolderWithoutMediaIsDone()
{
    const Run nothing = run({"read", media->path()});
    QCOMPARE(nothing.exitCode, 0);
    QCOMPARE(nothing.errors, QString("ostrel-batch: no media files found\n"));
    QCOMPARE(nothing.output, QString());
}

void TestBatchProgram::aDayIsExported()
{
    makeFile("card2/a.mov");
    makeFile("card1/a.mov");
    const QJsonObject oneChannel{
        {"codec_type", "audio"}, {"codec_name", "pcm_s24le"}, {"channels", 1}, {"sample_rate", "48000"}};
    makeFile("sound/alone.wav",
             plan("probe", {{"json", QJsonObject{{"streams", QJsonArray{oneChannel}},
                                                 {"format", QJsonObject{{"duration", "10.0"}}}}}}));
    const QString report = media->filePath("day.json");
    const Run day =
        run({"export", "--no-verify", "--to", out(), "--video-type", "mov-pass", "--report", report,
             media->filePath("card1"), media->filePath("card2"), media->filePath("sound")});
    QCOMPARE(day.exitCode, 0);
    QVERIFY(day.errors.contains("exporting: 100 %\n"));
    QCOMPARE(QDir(out()).entryList(QDir::Files), (QStringList{"a.MOV", "a_1.MOV"}));
    const QJsonArray records = reported(report);
    const auto field = [&](int i, const char *key) {
        return records.at(i).toObject()[QLatin1String(key)].toString();
    };
    QCOMPARE(field(0, "exportPath"), out() + "/a.MOV"); // of the first card
    QCOMPARE(field(0, "exportResult"), QString("written"));
    QCOMPARE(field(1, "exportPath"), out() + "/a_1.MOV");
    QCOMPARE(field(2, "exportResult"), QString("left out"));
    QCOMPARE(field(2, "reason"), QString("the file holds nothing but timecode"));
}

void TestBatchProgram::anExportThatFailsLeavesNoFileOfItsName()
{
    const QJsonArray halfWay{QJsonObject{{"work", true}}};
    const QString bad = makeFile("bad.mov", plan("export", {{"actions", halfWay}, {"exitCode", 7}}));
    makeFile("good.mov");
    const Run both = run({"export", "--no-verify", "--to", out(), media->path()});
    QCOMPARE(both.exitCode, 1);
    QVERIFY(both.errors.contains(bad + ": the export tool has failed with code 7\n"));
    QCOMPARE(QDir(out()).entryList(QDir::Files), (QStringList{"bad.mov.unverified", "good.mov"}));
}

void TestBatchProgram::whatFailedIsReplacedByARunThatResumes()
{
    const QJsonArray turns{QJsonObject{{"actions", QJsonArray{QJsonObject{{"work", true}}}}, {"exitCode", 7}},
                           QJsonObject()};
    const QString path = makeFile("a.mov");
    faketools::setPlan(path, {{"export", turns}});
    const QStringList arguments{"export", "--resume", "--no-verify", "--to", out(), path};
    QCOMPARE(run(arguments).exitCode, 1);
    QCOMPARE(QDir(out()).entryList(QDir::Files), QStringList{"a.mov.unverified"});
    QCOMPARE(run(arguments).exitCode, 0);
    QCOMPARE(QDir(out()).entryList(QDir::Files), QStringList{"a.mov"});
    const QDir notes(out() + "/.ostrel-batch");
    QCOMPARE(notes.entryList(QDir::Files), QStringList());
}

void TestBatchProgram::whatCannotBeReadIsNotExported()
{
    const QString bad = makeFile("bad.mov", plan("read", {{"exitCode", 201}}));
    const QString none = makeFile("none.mov", plan("read", {{"exitCode", 205}}));
    const Run both = run({"export", "--no-verify", "--to", out(), media->path()});
    QCOMPARE(both.exitCode, 1);
    QVERIFY(both.errors.contains(bad + ": could not open file\n"));
    QVERIFY(faketools::calls(bad, "export").isEmpty()); // its timecode would be missing
    QCOMPARE(faketools::calls(none, "export").size(), 1);
}

void TestBatchProgram::anInterruptedExportLeavesNoHalfFile()
{
    makeFile("done.mov");
    const QJsonArray halfWay{QJsonObject{{"work", true}}, QJsonObject{{"waitFor", "never"}}};
    const QString hanging = makeFile("hanging.mov", plan("export", {{"actions", halfWay}}));
    QProcess process;
    QVERIFY(startAndWaitFor("done.mov", process, {"export", "--no-verify", "--to", out(), media->path()}));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(out() + "/hanging.mov"), longWait);
    QCOMPARE(kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
    QVERIFY(process.waitForFinished(longWait));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().contains("hanging.mov: not exported"));
    QCOMPARE(QDir(out()).entryList(QDir::Files), QStringList{"done.mov"});
}

void TestBatchProgram::reportsOfSeveralRunsJoin()
{
    const QString good = makeFile("A/good.mov");
    const QString bad = makeFile("B/bad.mov", plan("probe", {{"exitCode", 1}}));
    const QString first = media->filePath("1.json");
    const QString second = media->filePath("2.json");
    const QString all = media->filePath("all.json");
    QCOMPARE(run({"read", good, "--report", first}).exitCode, 0);
    QCOMPARE(run({"read", bad, "--report", second}).exitCode, 1);
    const Run joined = run({"join", second, first, "--report", all});
    QCOMPARE(joined.exitCode, 1);
    QCOMPARE(joined.errors, "ostrel-batch: " + bad + ": error while reading file data\n");
    const QJsonArray files = reported(all);
    QCOMPARE(files.size(), 2);
    QCOMPARE(files.at(0), reported(first).at(0));
    QCOMPARE(files.at(1), reported(second).at(0));
    QCOMPARE(run({"join", first, "--report", all}).exitCode, 0);
    QCOMPARE(run({"join", good, "--report", all}).exitCode, 2); // no report
}

QTEST_GUILESS_MAIN(TestBatchProgram)
#include "tst_batchprogram.moc"

// SPDX-License-Identifier: MIT
#include "tests/control/controllerbench.h"

#include "testkit/faketools/faketools.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTest>

namespace
{

QJsonObject waitingProbe()
{
    return {{"probe", QJsonObject{{"waitFor", "gate"}}}};
}

QJsonObject failingProbe()
{
    return {{"probe", QJsonObject{{"exitCode", 1}}}};
}

QJsonObject silentProbe()
{
    return {{"probe", QJsonObject{{"json", QJsonObject()}}}};
}

} // namespace

class TestImportFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aDroppedFolderYieldsItsMediaFiles();
    void droppedFilesKeepTheirOrder();
    void filesOfSeveralDropsAddUp();
    void aGoodProbeFillsTheRecord();
    void aFailedProbeIsWorthThreeUnits();
    void anEmptyProbeIsWorthOneUnit();
    void aCrashingProbeIsAFailedProbe();
    void theRecordOfAFailedProbeIsADefaultOne();
    void theFortyFifthProbeStartsAndTheFortySixthWaits();
    void ninetyFiveProbesRunAtMostFortyFiveAtOnce();
    void waitingProbesStartInOrder();
    void theCountOfRunningJobsStaysAtZero();
    void anImportEndsWhenAllItsFilesAreRead();
    void anImportThatEndsWithAFailedProbeIsReady_data();
    void anImportThatEndsWithAFailedProbeIsReady();
    void anImportEndsWithItsLastUnit();
    void anImportWithAnEmptyProbeEndsInSilence();
    void aDropWithNothingUsableEndsInSilence();
    void anImportDoesNotEndWhileAFileIsUnanswered();
    void theNextImportCountsFromZero();
    void aHugeFolderIsWalkedInSlices();
    void theWalkWaitsForTheFileTable();
    void filesFoundLateAreCountedBeforeTheFirstProbe();
    void aStartRemovesWhatAnEarlierRunHasLeft();
    void destroyingTheControllerRemovesTheTemporaryFolder();
    void shuttingDownKillsTheToolsAndRemovesTheTemporaryFolder();

private:
    std::unique_ptr<ControllerBench> bench;
};

void TestImportFlow::init()
{
    bench = std::make_unique<ControllerBench>();
}

void TestImportFlow::cleanup()
{
    bench.reset();
}

void TestImportFlow::aDroppedFolderYieldsItsMediaFiles()
{
    bench->makeFile("day/card/A.MOV");
    bench->makeFile("day/card/b.txt");
    bench->control().onIterateThroughDir({bench->mediaUrl("day")});
    QCOMPARE(bench->events, QStringList{"found A.MOV"});

    bench->control().onFFProbeFile(bench->makeFile("day/card/A.MOV"), 0);
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("import"), QStringList{"import 1/3 importing files..."},
                              longWait); // one file
}

void TestImportFlow::droppedFilesKeepTheirOrder()
{
    bench->makeFile("notes.wav");
    bench->makeFile("clip.MXF");
    bench->makeFile("clip.mxf.bak");
    bench->makeFile("day/a.mts");
    bench->control().onIterateThroughDir({bench->mediaUrl("notes.wav"), bench->mediaUrl("clip.mxf.bak"),
                                          bench->mediaUrl("day"), bench->mediaUrl("clip.MXF")});
    QCOMPARE(bench->events, (QStringList{"found notes.wav", "found a.mts", "found clip.MXF"}));
}

void TestImportFlow::filesOfSeveralDropsAddUp()
{
    const FileData file = bench->makeFile("a.mov");
    bench->control().onIterateThroughDir({bench->mediaUrl("a.mov")});
    bench->control().onIterateThroughDir({bench->mediaUrl("a.mov"), bench->mediaUrl("a.mov")});
    QCOMPARE(bench->count("found a.mov"), 3); // the same file may be dropped again
    bench->control().onFFProbeFile(file, 0);
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("import"), QStringList{"import 1/9 importing files..."},
                              longWait);
}

void TestImportFlow::aGoodProbeFillsTheRecord()
{
    const QJsonObject json{
        {"format", QJsonObject{{"format_name", "wav"},
                               {"duration", "61.5"},
                               {"tags", QJsonObject{{"time_reference", "1728024000"}}}}},
        {"streams",
         QJsonArray{QJsonObject{{"codec_type", "audio"}, {"channels", 4}, {"sample_rate", "48000"}}}}};
    const FileData file = bench->makeFile("a.wav", {{"probe", QJsonObject{{"json", json}}}});
    bench->control().onFFProbeFile(file, 4711);
    QTRY_COMPARE_WITH_TIMEOUT(bench->events, (QStringList{"import 1/0 importing files...", "probed 4711: 0"}),
                              longWait);

    const FileData probed = bench->probedFiles.constFirst();
    QCOMPARE(probed.fileTC, QString("10:00:00.500"));
    QCOMPARE(probed.duration, 61.5);
    QCOMPARE(probed.audioChannelCount, 4);
    QCOMPARE(probed.audioStreamMap, QByteArray(1, 0));
    QVERIFY(probed.fileName.isNull()); // the table knows the file by its row
    QCOMPARE(faketools::calls(file.absoluteFilePath).size(), 1);
    QCOMPARE(faketools::calls(file.absoluteFilePath).constFirst().arguments.last(), file.absoluteFilePath);
}

void TestImportFlow::aFailedProbeIsWorthThreeUnits()
{
    bench->control().onFFProbeFile(bench->makeFile("a.mov", failingProbe()), 0);
    QTRY_COMPARE_WITH_TIMEOUT(bench->events, (QStringList{"import 1/0 importing files...", "probed 0: 1000"}),
                              longWait);
    bench->control().onFFProbeFile(bench->makeFile("b.mov"), 1);
    QTRY_COMPARE_WITH_TIMEOUT(bench->events.mid(2),
                              (QStringList{"import 4/0 importing files...", "probed 1: 0"}), longWait);
}

void TestImportFlow::anEmptyProbeIsWorthOneUnit()
{
    bench->control().onFFProbeFile(bench->makeFile("a.mov", silentProbe()), 0);
    QTRY_COMPARE_WITH_TIMEOUT(bench->events, (QStringList{"import 1/0 importing files...", "probed 0: 1001"}),
                              longWait);
    bench->control().onFFProbeFile(bench->makeFile("b.mov"), 1);
    QTRY_COMPARE_WITH_TIMEOUT(bench->events.mid(2),
                              (QStringList{"import 2/0 importing files...", "probed 1: 0"}), longWait);
}

void TestImportFlow::aCrashingProbeIsAFailedProbe()
{
    bench->control().onFFProbeFile(bench->makeFile("a.mov", {{"probe", QJsonObject{{"crash", true}}}}), 3);
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("probed 3: 1000"), longWait);
}

void TestImportFlow::theRecordOfAFailedProbeIsADefaultOne()
{
    FileData file = bench->makeFile("a.mov", failingProbe());
    file.setFileTC("01:00:00:00");
    bench->control().onFFProbeFile(file, 0);
    QTRY_COMPARE_WITH_TIMEOUT(bench->probedFiles.size(), 1, longWait);
    QVERIFY(bench->probedFiles.constFirst().absoluteFilePath.isNull());
    QVERIFY(!bench->probedFiles.constFirst().hasFileTC);
    QCOMPARE(bench->probedFiles.constFirst().rowNumber, -1);
}

void TestImportFlow::theFortyFifthProbeStartsAndTheFortySixthWaits()
{
    const QVector<FileData> files = bench->makeFiles(46, waitingProbe());
    for (int row = 0; row < 44; ++row)
        bench->control().onFFProbeFile(files.at(row), row);
    QCOMPARE(bench->handlers(), 44);
    bench->control().onFFProbeFile(files.at(44), 44);
    QCOMPARE(bench->handlers(), 45);
    bench->control().onFFProbeFile(files.at(45), 45);
    QCOMPARE(bench->handlers(), 45);
    QTRY_COMPARE_WITH_TIMEOUT(bench->startedTools().size(), 45, longWait);

    bench->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("probed").size(), 46, longWait);
    QCOMPARE(bench->startedTools().last(), QString("probe clip45.mov"));
}

void TestImportFlow::ninetyFiveProbesRunAtMostFortyFiveAtOnce()
{
    const QVector<FileData> files = bench->makeFiles(95, waitingProbe());
    for (int row = 0; row < files.size(); ++row)
        bench->control().onFFProbeFile(files.at(row), row);
    QTRY_COMPARE_WITH_TIMEOUT(bench->startedTools().size(), 45, longWait);
    QCOMPARE(bench->mostToolsAtOnce(), 45);
    QCOMPARE(bench->eventsOf("probed").size(), 0);

    bench->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("probed").size(), 95, longWait);
    QCOMPARE(bench->startedTools().size(), 95);
    QCOMPARE(bench->mostToolsAtOnce(), 45);
    QTRY_COMPARE_WITH_TIMEOUT(bench->handlers(), 0, longWait);
}

void TestImportFlow::waitingProbesStartInOrder()
{
    const QVector<FileData> files = bench->makeFiles(45, waitingProbe());
    for (int row = 0; row < files.size(); ++row)
        bench->control().onFFProbeFile(files.at(row), row);
    QStringList waiting;
    for (int row = 45; row < 50; ++row) {
        const QString name = QString("late%1.mov").arg(row);
        bench->control().onFFProbeFile(bench->makeFile(name, {{"probe", QJsonObject()}}), row);
        waiting += QString("probed %1: 0").arg(row);
    }
    QTRY_COMPARE_WITH_TIMEOUT(bench->startedTools().size(), 45, longWait);
    // A single free place: each job that starts in it ends before the next one starts.
    bench->control().onFFProbeReady(nullptr, {}, 1000, 1);
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("probed").size(), 6, longWait);
    QCOMPARE(bench->eventsOf("probed").mid(1), waiting);
    bench->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("probed").size(), 51, longWait);
}

void TestImportFlow::theCountOfRunningJobsStaysAtZero()
{
    for (int i = 0; i < 3; ++i)
        bench->control().onFFProbeReady(nullptr, {}, 0, 1);
    const QVector<FileData> files = bench->makeFiles(46, waitingProbe());
    for (int row = 0; row < files.size(); ++row)
        bench->control().onFFProbeFile(files.at(row), row);
    QCOMPARE(bench->handlers(), 45); // as ever
    bench->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("probed").size(), 3 + 46, longWait);
}

void TestImportFlow::anImportEndsWhenAllItsFilesAreRead()
{
    bench->actAsFileTable();
    bench->makeFile("a.mov");
    bench->control().onIterateThroughDir({bench->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importReady"), longWait);
    QCOMPARE(bench->events,
             (QStringList{"found a.mov", "import 1/3 importing files...", "probed 0: 0",
                          "import 2/3 prepare files for reading...", "read 0 stream 1: 0 10:00:00:00",
                          "import 3/3 reading audio TC...", "importReady"}));
    QVERIFY(!bench->hasTemporaryFolder());
}

void TestImportFlow::anImportThatEndsWithAFailedProbeIsReady_data()
{
    QTest::addColumn<bool>("afterReRead");
    QTest::addColumn<int>("goodFiles");
    QTest::newRow("nothing but a broken file") << false << 0;
    QTest::newRow("after good files") << false << 2;
    QTest::newRow("nothing but a broken file, after a re-read") << true << 0;
    QTest::newRow("after good files, after a re-read") << true << 2;
}

void TestImportFlow::anImportThatEndsWithAFailedProbeIsReady()
{
    QFETCH(bool, afterReRead);
    QFETCH(int, goodFiles);
    if (afterReRead) {
        bench->control().onUpdateAudioTCInfo({bench->makeFile("old.mov", {}, 99)}, automaticReading());
        QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("readingFinished"), longWait);
        QVERIFY(QFile::remove(bench->mediaPath("old.mov")));
    }
    bench->events.clear();
    bench->actAsFileTable();
    bench->makeFile("broken.mov", {{"probe", QJsonObject{{"waitFor", "gate"}, {"exitCode", 1}}}});
    for (int i = 0; i < goodFiles; ++i) { // two streams each: the total is more than three units a file
        bench->makeFile(
            QString("good%1.mov").arg(i),
            {{"probe",
              QJsonObject{
                  {"json", QJsonObject{{"streams", QJsonArray{QJsonObject{{"codec_type", "audio"}},
                                                              QJsonObject{{"codec_type", "audio"}}}}}}}}});
    }
    bench->control().onIterateThroughDir({bench->mediaUrl()});
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("read ").size(), 2 * goodFiles, longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench->handlers(), 1, longWait);
    QVERIFY(!bench->events.contains("importReady"));
    QCOMPARE(bench->hasTemporaryFolder(), goodFiles > 0);

    bench->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importReady"), longWait);
    QVERIFY(bench->events.at(bench->events.size() - 2).startsWith("probed"));
    QVERIFY(bench->events.at(bench->events.size() - 2).endsWith(": 1000"));
    QVERIFY(!bench->events.contains("importIdle") && !bench->events.contains("readingFinished"));
    QVERIFY(!bench->hasTemporaryFolder());
}

void TestImportFlow::anImportEndsWithItsLastUnit()
{
    bench->control().onIterateThroughDir({bench->mediaUrl("a.mov"), bench->mediaUrl("b.mov")});
    bench->control().onFFProbeReady(nullptr, {}, 0, 1);
    QVERIFY(!bench->events.contains("importReady"));
    bench->control().onFFProbeReady(nullptr, {}, 1, 1);
    QCOMPARE(bench->events.mid(2),
             (QStringList{"import 1/6 importing files...", "probed 0: 1000", "import 4/6 importing files...",
                          "probed 1: 1000", "importReady"}));
}

void TestImportFlow::anImportWithAnEmptyProbeEndsInSilence()
{
    bench->actAsFileTable();
    bench->makeFile("a.mov", silentProbe());
    bench->makeFile("b.mov");
    bench->makeFile("c.mov", failingProbe());
    bench->control().onIterateThroughDir({bench->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importIdle"), longWait);
    QVERIFY(!bench->events.contains("importReady"));
    QCOMPARE(bench->eventsOf("probed").size(), 3);
    QCOMPARE(bench->eventsOf("read ").size(), 1);
    QVERIFY(!bench->hasTemporaryFolder());
}

void TestImportFlow::aDropWithNothingUsableEndsInSilence()
{
    bench->makeFile("day/b.txt");
    bench->control().onIterateThroughDir({bench->mediaUrl("day"), bench->mediaUrl("day/b.txt"), QUrl()});
    QTRY_COMPARE_WITH_TIMEOUT(bench->events, QStringList{"importIdle"}, longWait);
    bench->control().onIterateThroughDir({});
    QTRY_COMPARE_WITH_TIMEOUT(bench->count("importIdle"), 2, longWait);
}

void TestImportFlow::anImportDoesNotEndWhileAFileIsUnanswered()
{
    const FileData silent = bench->makeFile("a.mov", silentProbe());
    const FileData good = bench->makeFile("b.mov");
    bench->control().onIterateThroughDir({bench->mediaUrl("a.mov"), bench->mediaUrl("b.mov")});
    bench->control().onFFProbeFile(silent, 0);
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("probed 0: 1001"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench->handlers(), 0, longWait);
    QVERIFY(!bench->events.contains("importIdle")); // no probe of b.mov was asked yet

    bench->control().onFFProbeFile(good, 1);
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("probed 1: 0"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench->handlers(), 0, longWait);
    QVERIFY(!bench->events.contains("importIdle")); // its reading was not asked for yet

    bench->control().onInitAudioTCInfo(good, 1);
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importIdle"), longWait);
    QVERIFY(bench->events.contains("read 1 stream 1: 0 10:00:00:00"));
    QCOMPARE(bench->count("importIdle"), 1);
}

void TestImportFlow::theNextImportCountsFromZero()
{
    bench->actAsFileTable();
    bench->makeFile("a.mov", silentProbe());
    bench->control().onIterateThroughDir({bench->mediaUrl("a.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importIdle"), longWait);
    bench->events.clear();
    bench->makeFile("b.mov");
    bench->control().onIterateThroughDir({bench->mediaUrl("b.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importReady"), longWait);
    QCOMPARE(bench->eventsOf("import "),
             (QStringList{"import 1/3 importing files...", "import 2/3 prepare files for reading...",
                          "import 3/3 reading audio TC..."}));
}

void TestImportFlow::aHugeFolderIsWalkedInSlices()
{
    for (int i = 0; i < 2'000; ++i)
        bench->makeFile(QString("huge/%1/foreign%2.txt").arg(i % 50).arg(i));
    const QVector<FileData> exports{bench->makeFile("a.mov")};
    ExportOptions options;
    options.exportDir = bench->mediaPath("out");
    QVERIFY(QDir().mkpath(options.exportDir));
    // As of a user who presses a button while the first slice is walked.
    QMetaObject::invokeMethod(
        this, [&] { bench->control().onExportReq(exports, options); }, Qt::QueuedConnection);
    QVector<QUrl> urls(30, bench->mediaUrl("huge"));
    bench->control().onIterateThroughDir(urls.toList());
    QCOMPARE(bench->events, QStringList()); // 60,000 entries are more than one slice
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importIdle"), longWait);
    QVERIFY(bench->events.indexOf("exportStarted") >= 0);
    QVERIFY(bench->events.indexOf("exportStarted") < bench->events.indexOf("importIdle"));
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("exportReady 0 []"), longWait);
}

void TestImportFlow::theWalkWaitsForTheFileTable()
{
    constexpr int fileCount = 600;
    for (int i = 0; i < fileCount; ++i)
        bench->makeFile(QString("day/clip%1.mov").arg(i), {{"probe", QJsonObject{{"hang", true}}}});
    bench->control().onIterateThroughDir({bench->mediaUrl("day")});
    const auto foundAtOnce = bench->eventsOf("found ").size();
    QVERIFY(foundAtOnce > 100 && foundAtOnce < fileCount);
    for (int row = 0; row < foundAtOnce; ++row)
        bench->control().onFFProbeFile(FileData(), row);
    QTRY_VERIFY_WITH_TIMEOUT(bench->eventsOf("found ").size() > foundAtOnce, longWait);
    // A table that never asks does not keep the walk from its end.
    QTRY_COMPARE_WITH_TIMEOUT(bench->eventsOf("found ").size(), fileCount, longWait);
}

void TestImportFlow::filesFoundLateAreCountedBeforeTheFirstProbe()
{
    bench->actAsFileTable();
    for (int i = 0; i < 2'000; ++i)
        bench->makeFile(QString("huge/foreign%1.txt").arg(i));
    bench->makeFile("first.mov");
    bench->makeFile("last.mov");
    QList<QUrl> urls{bench->mediaUrl("first.mov")};
    for (int i = 0; i < 20; ++i)
        urls += bench->mediaUrl("huge");
    urls += bench->mediaUrl("last.mov");
    bench->control().onIterateThroughDir(urls);
    QCOMPARE(bench->events, QStringList{"found first.mov"}); // still walking
    QTRY_VERIFY_WITH_TIMEOUT(bench->events.contains("importReady"), longWait);
    QCOMPARE(bench->events.at(1), QString("found last.mov"));
    QCOMPARE(bench->events.at(2), QString("import 1/6 importing files..."));
    QCOMPARE(bench->eventsOf("read ").size(), 2);
}

void TestImportFlow::aStartRemovesWhatAnEarlierRunHasLeft()
{
    QVERIFY(QDir().mkpath(bench->temporaryPath() + "/clip/deep"));
    bench->restart();
    QVERIFY(!bench->hasTemporaryFolder());
}

void TestImportFlow::destroyingTheControllerRemovesTheTemporaryFolder()
{
    bench->control().onInitAudioTCInfo(bench->makeFile("a.mov", {{"extract", QJsonObject{{"hang", true}}}}),
                                       0);
    QVERIFY(bench->hasTemporaryFolder());
    QTRY_COMPARE_WITH_TIMEOUT(bench->startedTools(), QStringList{"extract a.mov"}, longWait);
    const QString path = bench->temporaryPath();
    bench.reset();
    QVERIFY(!QFileInfo::exists(path));
}

void TestImportFlow::shuttingDownKillsTheToolsAndRemovesTheTemporaryFolder()
{
    bench->actAsFileTable();
    const QVector<FileData> files = bench->makeFiles(
        50, {{"extract", QJsonObject{{"hang", true}}}, {"probe", QJsonObject{{"hang", true}}}});
    bench->control().onIterateThroughDir({bench->mediaUrl()});
    bench->control().onInitAudioTCInfo(files.constFirst(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(bench->startedTools().size(), 45, longWait);
    const QStringList before = bench->events;

    bench->control().shutDown();
    QCOMPARE(bench->handlers(), 0);
    QVERIFY(!bench->hasTemporaryFolder());
    QCoreApplication::processEvents();
    QCOMPARE(bench->events, before); // not a word any more
    QCOMPARE(bench->startedTools().size(), 45);
}

QTEST_GUILESS_MAIN(TestImportFlow)
#include "tst_importflow.moc"

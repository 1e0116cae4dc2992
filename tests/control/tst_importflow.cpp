// SPDX-License-Identifier: MIT
#include "testkit/fixtures/controllerfixture.h"

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
    std::unique_ptr<ControllerFixture> fixture;
};

void TestImportFlow::init()
{
    fixture = std::make_unique<ControllerFixture>();
}

void TestImportFlow::cleanup()
{
    fixture.reset();
}

void TestImportFlow::aDroppedFolderYieldsItsMediaFiles()
{
    fixture->makeFile("day/card/A.MOV");
    fixture->makeFile("day/card/b.txt");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("day")});
    QCOMPARE(fixture->events, QStringList{"found A.MOV"});

    fixture->control().onFFProbeFile(fixture->makeFile("day/card/A.MOV"), 0);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("import"), QStringList{"import 1/3 importing files..."},
                              longWait); // one file
}

void TestImportFlow::droppedFilesKeepTheirOrder()
{
    fixture->makeFile("notes.wav");
    fixture->makeFile("clip.MXF");
    fixture->makeFile("clip.mxf.bak");
    fixture->makeFile("day/a.mts");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("notes.wav"), fixture->mediaUrl("clip.mxf.bak"),
                                            fixture->mediaUrl("day"), fixture->mediaUrl("clip.MXF")});
    QCOMPARE(fixture->events, (QStringList{"found notes.wav", "found a.mts", "found clip.MXF"}));
}

void TestImportFlow::filesOfSeveralDropsAddUp()
{
    const FileData file = fixture->makeFile("a.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov")});
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov"), fixture->mediaUrl("a.mov")});
    QCOMPARE(fixture->count("found a.mov"), 3); // the same file may be dropped again
    fixture->control().onFFProbeFile(file, 0);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("import"), QStringList{"import 1/9 importing files..."},
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
    const FileData file = fixture->makeFile("a.wav", {{"probe", QJsonObject{{"json", json}}}});
    fixture->control().onFFProbeFile(file, 4711);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->events,
                              (QStringList{"import 1/0 importing files...", "probed 4711: 0"}), longWait);

    const FileData probed = fixture->probedFiles.constFirst();
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
    fixture->control().onFFProbeFile(fixture->makeFile("a.mov", failingProbe()), 0);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->events,
                              (QStringList{"import 1/0 importing files...", "probed 0: 1000"}), longWait);
    fixture->control().onFFProbeFile(fixture->makeFile("b.mov"), 1);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->events.mid(2),
                              (QStringList{"import 4/0 importing files...", "probed 1: 0"}), longWait);
}

void TestImportFlow::anEmptyProbeIsWorthOneUnit()
{
    fixture->control().onFFProbeFile(fixture->makeFile("a.mov", silentProbe()), 0);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->events,
                              (QStringList{"import 1/0 importing files...", "probed 0: 1001"}), longWait);
    fixture->control().onFFProbeFile(fixture->makeFile("b.mov"), 1);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->events.mid(2),
                              (QStringList{"import 2/0 importing files...", "probed 1: 0"}), longWait);
}

void TestImportFlow::aCrashingProbeIsAFailedProbe()
{
    fixture->control().onFFProbeFile(fixture->makeFile("a.mov", {{"probe", QJsonObject{{"crash", true}}}}),
                                     3);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("probed 3: 1000"), longWait);
}

void TestImportFlow::theRecordOfAFailedProbeIsADefaultOne()
{
    FileData file = fixture->makeFile("a.mov", failingProbe());
    file.setFileTC("01:00:00:00");
    fixture->control().onFFProbeFile(file, 0);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->probedFiles.size(), 1, longWait);
    QVERIFY(fixture->probedFiles.constFirst().absoluteFilePath.isNull());
    QVERIFY(!fixture->probedFiles.constFirst().hasFileTC);
    QCOMPARE(fixture->probedFiles.constFirst().rowNumber, -1);
}

void TestImportFlow::theFortyFifthProbeStartsAndTheFortySixthWaits()
{
    const QVector<FileData> files = fixture->makeFiles(46, waitingProbe());
    for (int row = 0; row < 44; ++row)
        fixture->control().onFFProbeFile(files.at(row), row);
    QCOMPARE(fixture->handlers(), 44);
    fixture->control().onFFProbeFile(files.at(44), 44);
    QCOMPARE(fixture->handlers(), 45);
    fixture->control().onFFProbeFile(files.at(45), 45);
    QCOMPARE(fixture->handlers(), 45);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);

    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("probed").size(), 46, longWait);
    QCOMPARE(fixture->startedTools().last(), QString("probe clip45.mov"));
}

void TestImportFlow::ninetyFiveProbesRunAtMostFortyFiveAtOnce()
{
    const QVector<FileData> files = fixture->makeFiles(95, waitingProbe());
    for (int row = 0; row < files.size(); ++row)
        fixture->control().onFFProbeFile(files.at(row), row);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    QCOMPARE(fixture->mostToolsAtOnce(), 45);
    QCOMPARE(fixture->eventsOf("probed").size(), 0);

    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("probed").size(), 95, longWait);
    QCOMPARE(fixture->startedTools().size(), 95);
    QCOMPARE(fixture->mostToolsAtOnce(), 45);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestImportFlow::waitingProbesStartInOrder()
{
    const QVector<FileData> files = fixture->makeFiles(45, waitingProbe());
    for (int row = 0; row < files.size(); ++row)
        fixture->control().onFFProbeFile(files.at(row), row);
    QStringList waiting;
    for (int row = 45; row < 50; ++row) {
        const QString name = QString("late%1.mov").arg(row);
        fixture->control().onFFProbeFile(fixture->makeFile(name, {{"probe", QJsonObject()}}), row);
        waiting += QString("probed %1: 0").arg(row);
    }
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    // A single free place: each job that starts in it ends before the next one starts.
    fixture->control().onFFProbeReady(nullptr, {}, 1000, 1);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("probed").size(), 6, longWait);
    QCOMPARE(fixture->eventsOf("probed").mid(1), waiting);
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("probed").size(), 51, longWait);
}

void TestImportFlow::theCountOfRunningJobsStaysAtZero()
{
    for (int i = 0; i < 3; ++i)
        fixture->control().onFFProbeReady(nullptr, {}, 0, 1);
    const QVector<FileData> files = fixture->makeFiles(46, waitingProbe());
    for (int row = 0; row < files.size(); ++row)
        fixture->control().onFFProbeFile(files.at(row), row);
    QCOMPARE(fixture->handlers(), 45); // as ever
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("probed").size(), 3 + 46, longWait);
}

void TestImportFlow::anImportEndsWhenAllItsFilesAreRead()
{
    fixture->actAsFileTable();
    fixture->makeFile("a.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->events,
             (QStringList{"found a.mov", "import 1/3 importing files...", "probed 0: 0",
                          "import 2/3 prepare files for reading...", "read 0 stream 1: 0 10:00:00:00",
                          "import 3/3 reading audio TC...", "importReady"}));
    QVERIFY(!fixture->hasTemporaryFolder());
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
        fixture->control().onUpdateAudioTCInfo({fixture->makeFile("old.mov", {}, 99)}, automaticReading());
        QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
        QVERIFY(QFile::remove(fixture->mediaPath("old.mov")));
    }
    fixture->events.clear();
    fixture->actAsFileTable();
    fixture->makeFile("broken.mov", {{"probe", QJsonObject{{"waitFor", "gate"}, {"exitCode", 1}}}});
    for (int i = 0; i < goodFiles; ++i) { // two streams each: the total is more than three units a file
        fixture->makeFile(
            QString("good%1.mov").arg(i),
            {{"probe",
              QJsonObject{
                  {"json", QJsonObject{{"streams", QJsonArray{QJsonObject{{"codec_type", "audio"}},
                                                              QJsonObject{{"codec_type", "audio"}}}}}}}}});
    }
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("read ").size(), 2 * goodFiles, longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 1, longWait);
    QVERIFY(!fixture->events.contains("importReady"));
    QCOMPARE(fixture->hasTemporaryFolder(), goodFiles > 0);

    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QVERIFY(fixture->events.at(fixture->events.size() - 2).startsWith("probed"));
    QVERIFY(fixture->events.at(fixture->events.size() - 2).endsWith(": 1000"));
    QVERIFY(!fixture->events.contains("importIdle") && !fixture->events.contains("readingFinished"));
    QVERIFY(!fixture->hasTemporaryFolder());
}

void TestImportFlow::anImportEndsWithItsLastUnit()
{
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov"), fixture->mediaUrl("b.mov")});
    fixture->control().onFFProbeReady(nullptr, {}, 0, 1);
    QVERIFY(!fixture->events.contains("importReady"));
    fixture->control().onFFProbeReady(nullptr, {}, 1, 1);
    QCOMPARE(fixture->events.mid(2),
             (QStringList{"import 1/6 importing files...", "probed 0: 1000", "import 4/6 importing files...",
                          "probed 1: 1000", "importReady"}));
}

void TestImportFlow::anImportWithAnEmptyProbeEndsInSilence()
{
    fixture->actAsFileTable();
    fixture->makeFile("a.mov", silentProbe());
    fixture->makeFile("b.mov");
    fixture->makeFile("c.mov", failingProbe());
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importIdle"), longWait);
    QVERIFY(!fixture->events.contains("importReady"));
    QCOMPARE(fixture->eventsOf("probed").size(), 3);
    QCOMPARE(fixture->eventsOf("read ").size(), 1);
    QVERIFY(!fixture->hasTemporaryFolder());
}

void TestImportFlow::aDropWithNothingUsableEndsInSilence()
{
    fixture->makeFile("day/b.txt");
    fixture->control().onIterateThroughDir(
        {fixture->mediaUrl("day"), fixture->mediaUrl("day/b.txt"), QUrl()});
    QTRY_COMPARE_WITH_TIMEOUT(fixture->events, QStringList{"importIdle"}, longWait);
    fixture->control().onIterateThroughDir({});
    QTRY_COMPARE_WITH_TIMEOUT(fixture->count("importIdle"), 2, longWait);
}

void TestImportFlow::anImportDoesNotEndWhileAFileIsUnanswered()
{
    const FileData silent = fixture->makeFile("a.mov", silentProbe());
    const FileData good = fixture->makeFile("b.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov"), fixture->mediaUrl("b.mov")});
    fixture->control().onFFProbeFile(silent, 0);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("probed 0: 1001"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QVERIFY(!fixture->events.contains("importIdle")); // no probe of b.mov was asked yet

    fixture->control().onFFProbeFile(good, 1);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("probed 1: 0"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QVERIFY(!fixture->events.contains("importIdle")); // its reading was not asked for yet

    fixture->control().onInitAudioTCInfo(good, 1);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importIdle"), longWait);
    QVERIFY(fixture->events.contains("read 1 stream 1: 0 10:00:00:00"));
    QCOMPARE(fixture->count("importIdle"), 1);
}

void TestImportFlow::theNextImportCountsFromZero()
{
    fixture->actAsFileTable();
    fixture->makeFile("a.mov", silentProbe());
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importIdle"), longWait);
    fixture->events.clear();
    fixture->makeFile("b.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("b.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->eventsOf("import "),
             (QStringList{"import 1/3 importing files...", "import 2/3 prepare files for reading...",
                          "import 3/3 reading audio TC..."}));
}

void TestImportFlow::aHugeFolderIsWalkedInSlices()
{
    for (int i = 0; i < 2'000; ++i)
        fixture->makeFile(QString("huge/%1/foreign%2.txt").arg(i % 50).arg(i));
    const QVector<FileData> exports{fixture->makeFile("a.mov")};
    ExportOptions options;
    options.exportDir = fixture->mediaPath("out");
    QVERIFY(QDir().mkpath(options.exportDir));
    // As of a user who presses a button while the first slice is walked.
    QMetaObject::invokeMethod(
        this, [&] { fixture->control().onExportReq(exports, options); }, Qt::QueuedConnection);
    QVector<QUrl> urls(30, fixture->mediaUrl("huge"));
    fixture->control().onIterateThroughDir(urls.toList());
    QCOMPARE(fixture->events, QStringList()); // 60,000 entries are more than one slice
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importIdle"), longWait);
    QVERIFY(fixture->events.indexOf("exportStarted") >= 0);
    QVERIFY(fixture->events.indexOf("exportStarted") < fixture->events.indexOf("importIdle"));
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("exportReady 0 []"), longWait);
}

void TestImportFlow::theWalkWaitsForTheFileTable()
{
    constexpr int fileCount = 600;
    for (int i = 0; i < fileCount; ++i)
        fixture->makeFile(QString("day/clip%1.mov").arg(i), {{"probe", QJsonObject{{"hang", true}}}});
    fixture->control().onIterateThroughDir({fixture->mediaUrl("day")});
    const auto foundAtOnce = fixture->eventsOf("found ").size();
    QVERIFY(foundAtOnce > 100 && foundAtOnce < fileCount);
    for (int row = 0; row < foundAtOnce; ++row)
        fixture->control().onFFProbeFile(FileData(), row);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->eventsOf("found ").size() > foundAtOnce, longWait);
    // A table that never asks does not keep the walk from its end.
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("found ").size(), fileCount, longWait);
}

void TestImportFlow::filesFoundLateAreCountedBeforeTheFirstProbe()
{
    fixture->actAsFileTable();
    for (int i = 0; i < 2'000; ++i)
        fixture->makeFile(QString("huge/foreign%1.txt").arg(i));
    fixture->makeFile("first.mov");
    fixture->makeFile("last.mov");
    QList<QUrl> urls{fixture->mediaUrl("first.mov")};
    for (int i = 0; i < 20; ++i)
        urls += fixture->mediaUrl("huge");
    urls += fixture->mediaUrl("last.mov");
    fixture->control().onIterateThroughDir(urls);
    QCOMPARE(fixture->events, QStringList{"found first.mov"}); // still walking
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->events.at(1), QString("found last.mov"));
    QCOMPARE(fixture->events.at(2), QString("import 1/6 importing files..."));
    QCOMPARE(fixture->eventsOf("read ").size(), 2);
}

void TestImportFlow::aStartRemovesWhatAnEarlierRunHasLeft()
{
    QVERIFY(QDir().mkpath(fixture->temporaryPath() + "/clip/deep"));
    fixture->restart();
    QVERIFY(!fixture->hasTemporaryFolder());
}

void TestImportFlow::destroyingTheControllerRemovesTheTemporaryFolder()
{
    fixture->control().onInitAudioTCInfo(
        fixture->makeFile("a.mov", {{"extract", QJsonObject{{"hang", true}}}}), 0);
    QVERIFY(fixture->hasTemporaryFolder());
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools(), QStringList{"extract a.mov"}, longWait);
    const QString path = fixture->temporaryPath();
    fixture.reset();
    QVERIFY(!QFileInfo::exists(path));
}

void TestImportFlow::shuttingDownKillsTheToolsAndRemovesTheTemporaryFolder()
{
    fixture->actAsFileTable();
    const QVector<FileData> files = fixture->makeFiles(
        50, {{"extract", QJsonObject{{"hang", true}}}, {"probe", QJsonObject{{"hang", true}}}});
    fixture->control().onIterateThroughDir({fixture->mediaUrl()});
    fixture->control().onInitAudioTCInfo(files.constFirst(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    const QStringList before = fixture->events;

    fixture->control().shutDown();
    QCOMPARE(fixture->handlers(), 0);
    QVERIFY(!fixture->hasTemporaryFolder());
    QCoreApplication::processEvents();
    QCOMPARE(fixture->events, before); // not a word any more
    QCOMPARE(fixture->startedTools().size(), 45);
}

QTEST_GUILESS_MAIN(TestImportFlow)
#include "tst_importflow.moc"

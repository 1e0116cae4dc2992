// SPDX-License-Identifier: MIT
#include "testkit/fixtures/controllerfixture.h"

#include "testkit/faketools/faketools.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTest>

namespace
{

QJsonObject plan(const QString &job, const QJsonObject &part)
{
    return {{job, part}};
}

QJsonObject failing()
{
    return {{"exitCode", 1}};
}

QJsonObject waiting()
{
    return {{"waitFor", "gate"}};
}

} // namespace

class TestReadFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aReReadOfNothingSaysNothing();
    void aReReadEndsWithItsLastReader();
    void threeStreamsAreReadByThreeReaders();
    void resultsAreToldApartByTheirFileName();
    void theReadersAnswerIsPassedOnUnchanged_data();
    void theReadersAnswerIsPassedOnUnchanged();
    void anImportReadsWithAutomaticSettings();
    void anImportReadsAsItsOptionsSay();
    void aReReadPassesItsOptions();
    void aFailedExtractionIsReported_data();
    void aFailedExtractionIsReported();
    void aReReadThatEndsWithAFailedExtractionIsAnImportReady();
    void aFailedExtractionAtTheEndLeavesTheFractionAndTheFolder();
    void theNextStageRemovesTheFolderFirst();
    void progressNeverRepeatsAFraction();
    void extractedAudioStaysUntilTheEndOfTheStage();
    void theShortenedPathIsRemoved();
    void filesOfOneBaseNameAreReadOnceEach();
    void everyFileInTheSubFolderIsRead();
    void extractionsBeyondTheLimitKeepTheirRow();
    void readersOfOneFileStartTogetherBeyondTheLimit();
    void readersWaitWhileFortyFiveRun();
    void aFolderGoneWhileItsReadersWaitStopsNothing();
    void stagesThatCannotCompleteEndInSilence_data();
    void stagesThatCannotCompleteEndInSilence();
    void aReReadWaitsForTheImportUnderWay();
    void aDropWaitsForTheReReadUnderWay();
    void aReReadWaitsForTheReReadUnderWay();
    void aDropDuringAnImportRunsAtOnce();
    void whatWaitsIsServedInOrder();

private:
    void reRead(const QVector<FileData> &files)
    {
        fixture->control().onUpdateAudioTCInfo(files, automaticReading());
    }
    FileData makeSound(const QString &name, int row, const QByteArray &streams,
                       const QJsonObject &plan = {}) const;
    void startWaitingProbes(int count);

    std::unique_ptr<ControllerFixture> fixture;
};

void TestReadFlow::init()
{
    fixture = std::make_unique<ControllerFixture>();
}

void TestReadFlow::cleanup()
{
    fixture.reset();
}

FileData TestReadFlow::makeSound(const QString &name, int row, const QByteArray &streams,
                                 const QJsonObject &plan) const
{
    FileData file = fixture->makeFile(name, plan, row);
    file.audioStreamMap = streams;
    return file;
}

/// Occupies \a count places with probes that wait at the gate "probes".
void TestReadFlow::startWaitingProbes(int count)
{
    for (int i = 0; i < count; ++i) {
        const QString name = QString("probed%1.mov").arg(i);
        fixture->control().onFFProbeFile(
            fixture->makeFile(name, plan("probe", {{"waitFor", "probes"}, {"exitCode", 1}})), 1000 + i);
    }
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), count, longWait);
}

void TestReadFlow::aReReadOfNothingSaysNothing()
{
    reRead({});
    QCoreApplication::processEvents();
    QCOMPARE(fixture->events, QStringList());

    // No file counts, and the mode is that of a re-read: two units for the one file that follows.
    fixture->control().onIterateThroughDir({fixture->mediaUrl("c.mov")});
    fixture->control().onAudioExtractReady(nullptr, makeSound("c.mov", 0, "\x01"), 1);
    QCOMPARE(fixture->eventsOf("import "), (QStringList{"import 1/2 prepare files for reading...",
                                                        "import 2/2 prepare files for reading..."}));
}

void TestReadFlow::aReReadEndsWithItsLastReader()
{
    reRead({makeSound("a.mov", 7, "\x01")});
    QVERIFY(fixture->hasTemporaryFolder());
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->events,
             (QStringList{"import 1/2 prepare files for reading...", "read 7 stream 1: 0 10:00:00:00",
                          "import 2/2 reading audio TC...", "readingFinished"}));
    QVERIFY(!fixture->hasTemporaryFolder());
    QCoreApplication::processEvents();
    QCOMPARE(fixture->count("importIdle"), 0);
}

void TestReadFlow::threeStreamsAreReadByThreeReaders()
{
    reRead({makeSound("a.mov", 7, "\x01\x02\x05")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QStringList reads = fixture->eventsOf("read ");
    reads.sort();
    QCOMPARE(reads, (QStringList{"read 7 stream 1: 0 10:00:00:00", "read 7 stream 2: 0 10:00:00:00",
                                 "read 7 stream 5: 0 10:00:00:00"}));
    // 1 of 2 came before the readers were counted; 2 of 4 is the same half, so it is not reported.
    QCOMPARE(fixture->eventsOf("import "),
             (QStringList{"import 1/2 prepare files for reading...", "import 3/4 reading audio TC...",
                          "import 4/4 reading audio TC..."}));
}

void TestReadFlow::resultsAreToldApartByTheirFileName()
{
    fixture->control().onLTCReaderReady(nullptr, {}, R"(C:\T\OstrelSyncTemp\clip\clip_1_7.wav)", 205);
    fixture->control().onLTCReaderReady(nullptr, {{"Timecode", "01:02:03:04"}}, "/tmp/a_b/x_0_12.wav", 0);
    QCOMPARE(fixture->eventsOf("read "),
             (QStringList{"read 7 stream 1: 205 nothing", "read 12 stream 0: 0 01:02:03:04"}));
}

void TestReadFlow::theReadersAnswerIsPassedOnUnchanged_data()
{
    QTest::addColumn<QJsonObject>("part");
    QTest::addColumn<QString>("event");
    QTest::newRow("not found") << QJsonObject{{"exitCode", 205}} << "read 7 stream 1: 205 nothing";
    QTest::newRow("bad file") << QJsonObject{{"exitCode", 201}} << "read 7 stream 1: 201 nothing";
    QTest::newRow("with a text all the same")
        << QJsonObject{{"json", QJsonObject{{"Timecode", "x"}}}, {"exitCode", 204}}
        << "read 7 stream 1: 204 x";
    QTest::newRow("half an object") << QJsonObject{{"actions",
                                                    QJsonArray{QJsonObject{{"stdout", "{\"Time"}}}}}
                                    << "read 7 stream 1: 0 nothing";
}

void TestReadFlow::theReadersAnswerIsPassedOnUnchanged()
{
    QFETCH(QJsonObject, part);
    QFETCH(QString, event);
    reRead({makeSound("a.mov", 7, "\x01", plan("read", part))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->eventsOf("read "), QStringList{event});
}

void TestReadFlow::anImportReadsWithAutomaticSettings()
{
    FileData camera = makeSound("camera.mov", 0, "\x01");
    camera.isGoPro = true;
    const FileData other = makeSound("other.mov", 1, "\x01");
    reRead({}); // leaves the mode of a re-read behind
    fixture->control().onInitAudioTCInfo(camera, 0);
    fixture->control().onInitAudioTCInfo(other, 1);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("read ").size(), 2, longWait);
    QCOMPARE(faketools::calls(camera.absoluteFilePath, "read").constFirst().arguments.mid(1),
             QStringList{"-aSLOPE"});
    QCOMPARE(faketools::calls(other.absoluteFilePath, "read").constFirst().arguments,
             QStringList{QDir(fixture->temporaryPath()).filePath("other/other_1_1.wav")});
}

void TestReadFlow::anImportReadsAsItsOptionsSay()
{
    AudioTCOptions options;
    options.algorithm = 1;
    options.channel = 2;
    options.frameRate = 25.0;
    fixture->control().setImportOptions(options);
    const FileData file = makeSound("a.mov", 4, "\x01");
    fixture->control().onInitAudioTCInfo(file, 4);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("read ").size(), 1, longWait);
    QCOMPARE(faketools::calls(file.absoluteFilePath, "read").constFirst().arguments.mid(1),
             (QStringList{"-c2", "-f25", "-aLOW"}));
}

void TestReadFlow::aReReadPassesItsOptions()
{
    AudioTCOptions options;
    options.algorithm = 2;
    options.channel = 3;
    options.frameRate = 29.97;
    const FileData file = makeSound("a.mov", 4, "\x01");
    fixture->control().onUpdateAudioTCInfo({file}, options);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(faketools::calls(file.absoluteFilePath, "read").constFirst().arguments.mid(1),
             (QStringList{"-c3", "-f29.97", "-aMID"}));
    QCOMPARE(faketools::calls(file.absoluteFilePath, "extract").size(), 1);
}

void TestReadFlow::aFailedExtractionIsReported_data()
{
    QTest::addColumn<QJsonObject>("part");
    QTest::newRow("exit code") << failing();
    QTest::newRow("crash") << QJsonObject{{"crash", true}};
}

void TestReadFlow::aFailedExtractionIsReported()
{
    QFETCH(QJsonObject, part);
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov"), fixture->mediaUrl("b.mov")});
    fixture->control().onInitAudioTCInfo(makeSound("a.mov", -1, "\x01", plan("extract", part)), 5);
    QTRY_COMPARE_WITH_TIMEOUT(
        fixture->events.mid(2),
        (QStringList{"import 1/6 prepare files for reading...", "import 2/6 prepare files for reading...",
                     "read 5 stream -1: 2001 nothing"}),
        longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestReadFlow::aReReadThatEndsWithAFailedExtractionIsAnImportReady()
{
    reRead({makeSound("good.mov", 0, "\x01"),
            makeSound("bad.mov", 1, "\x01", plan("extract", {{"waitFor", "gate"}, {"exitCode", 1}}))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 0 stream 1: 0 10:00:00:00"), longWait);
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(fixture->events.last(), QString("importReady"));
    QCOMPARE(fixture->count("readingFinished"), 0);
}

void TestReadFlow::aFailedExtractionAtTheEndLeavesTheFractionAndTheFolder()
{
    reRead({makeSound("bad.mov", 0, "\x01", plan("extract", failing()))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QVERIFY(fixture->hasTemporaryFolder());
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QVERIFY(fixture->hasTemporaryFolder());

    fixture->events.clear();
    reRead({makeSound("good.mov", 0, "\x01")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->eventsOf("import "), QStringList()); // still at 2 of 2

    fixture->events.clear();
    reRead({makeSound("good.mov", 0, "\x01")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->eventsOf("import ").size(), 2);
}

void TestReadFlow::theNextStageRemovesTheFolderFirst()
{
    reRead({makeSound("bad.mov", 0, "\x01", plan("extract", failing()))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    const QString leftOver = fixture->temporaryPath() + "/good";
    QVERIFY(QDir().mkpath(leftOver));
    QVERIFY(QFile(leftOver + "/old_1_0.wav").open(QIODevice::WriteOnly));
    reRead({makeSound("good.mov", 0, "\x01")});
    QVERIFY(!QFileInfo::exists(leftOver + "/old_1_0.wav"));
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->eventsOf("read 0 stream 1").size(), 1); // once, not the left-over too

    QVERIFY(QDir().mkpath(leftOver));
    fixture->makeFile("drop.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("drop.mov")});
    QVERIFY(!fixture->hasTemporaryFolder());
}

void TestReadFlow::progressNeverRepeatsAFraction()
{
    QVector<FileData> files;
    for (int row = 0; row < 30; ++row) {
        const QByteArray streams = QByteArray("\x01\x02\x03\x04").left(1 + row % 4);
        files += makeSound(QString("clip%1.mov").arg(row), row, streams,
                           row % 7 == 0 ? plan("extract", failing()) : QJsonObject());
    }
    reRead(files);
    QTRY_VERIFY_WITH_TIMEOUT(
        fixture->events.contains("readingFinished") || fixture->events.contains("importReady"), longWait);
    double last = 0.0;
    const QStringList progress = fixture->eventsOf("import ");
    QVERIFY(progress.size() > 10);
    for (const QString &event : progress) {
        const QStringList numbers = event.section(' ', 1, 1).split('/');
        const double fraction = numbers.at(0).toDouble() / numbers.at(1).toDouble();
        QVERIFY2(fraction > last, qPrintable(event));
        last = fraction;
    }
    QCOMPARE(last, 1.0);
}

void TestReadFlow::extractedAudioStaysUntilTheEndOfTheStage()
{
    const QDir temporary(fixture->temporaryPath());
    reRead({makeSound("a.mov", 0, "\x01"), makeSound("b.mov", 1, "\x01", plan("read", waiting()))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 0 stream 1: 0 10:00:00:00"), longWait);
    QVERIFY(temporary.exists("a/a_1_0.wav"));
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QVERIFY(!fixture->hasTemporaryFolder());
}

void TestReadFlow::theShortenedPathIsRemoved()
{
    fixture->makeFile("clip_1_7.wav");
    fixture->makeFile("clip_1");
    fixture->control().onLTCReaderReady(nullptr, {}, fixture->mediaPath("clip_1_7.wav"), 0);
    QVERIFY(QFileInfo::exists(fixture->mediaPath("clip_1_7.wav")));
    QVERIFY(!QFileInfo::exists(fixture->mediaPath("clip_1")));
    fixture->control().onLTCReaderReady(nullptr, {}, "nothing.wav", 0); // no "_" to shorten at
    QCOMPARE(fixture->eventsOf("read ").size(), 2);
}

void TestReadFlow::filesOfOneBaseNameAreReadOnceEach()
{
    reRead({makeSound("card1/clip.mov", 0, "\x01\x02"), makeSound("card2/clip.mov", 1, "\x01"),
            makeSound("card2/clip.take2.wav", 2, QByteArray(1, 0))});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QStringList reads = fixture->eventsOf("read ");
    reads.sort();
    QCOMPARE(reads, (QStringList{"read 0 stream 1: 0 10:00:00:00", "read 0 stream 2: 0 10:00:00:00",
                                 "read 1 stream 1: 0 10:00:00:00", "read 2 stream 0: 0 10:00:00:00"}));
}

void TestReadFlow::everyFileInTheSubFolderIsRead()
{
    const QDir folder(fixture->temporaryPath() + "/a");
    reRead({makeSound("a.mov", 7, "\x01",
                      plan("extract", {{"actions", QJsonArray{QJsonObject{{"waitFor", "gate"}},
                                                              QJsonObject{{"work", true}}}}}))});
    QVERIFY(folder.mkpath("folder_1_7.wav"));
    for (const char *name : {".hidden_3_7.wav", "strange.txt", "other_1_8.wav"})
        QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QStringList reads = fixture->eventsOf("read ");
    reads.sort();
    // "strange" has no numbers; "other_1_8" is left to row 8.
    QCOMPARE(reads, (QStringList{"read 0 stream 0: 0 10:00:00:00", "read 7 stream 1: 0 10:00:00:00",
                                 "read 7 stream 3: 0 10:00:00:00"}));
}

void TestReadFlow::extractionsBeyondTheLimitKeepTheirRow()
{
    startWaitingProbes(45);
    fixture->control().onInitAudioTCInfo(makeSound("late.mov", -1, "\x01"), 33);
    fixture->control().onInitAudioTCInfo(makeSound("later.mov", -1, "\x01"), 34);
    QCOMPARE(fixture->handlers(), 45);
    QVERIFY(!fixture->hasTemporaryFolder());
    fixture->openGate("probes");
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 33 stream 1: 0 10:00:00:00"), longWait);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 34 stream 1: 0 10:00:00:00"), longWait);
}

void TestReadFlow::readersOfOneFileStartTogetherBeyondTheLimit()
{
    startWaitingProbes(43);
    fixture->control().onInitAudioTCInfo(
        makeSound("a.mov", -1, "\x01\x02\x03\x04\x05", plan("read", waiting())), 1);
    QCOMPARE(fixture->handlers(), 44);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 43 + 5, longWait);
    fixture->control().onFFProbeFile(fixture->makeFile("b.mov"), 2);
    QCOMPARE(fixture->handlers(), 43 + 5); // it waits
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("read ").size(), 5, longWait);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("probed 2: 0"), longWait);
    fixture->openGate("probes");
    QTRY_COMPARE_WITH_TIMEOUT(fixture->eventsOf("probed ").size(), 44, longWait);
}

void TestReadFlow::readersWaitWhileFortyFiveRun()
{
    const FileData file = makeSound("a.mov", 1, "\x01");
    startWaitingProbes(45);
    fixture->control().onAudioExtractReady(nullptr, file, 0); // as if one more had ended
    const QDir folder(fixture->temporaryPath() + "/a");
    QVERIFY(folder.mkpath("."));
    QVERIFY(QFile(folder.filePath("a_1_1.wav")).open(QIODevice::WriteOnly));
    QCOMPARE(fixture->handlers(), 45);
    fixture->openGate("probes");
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 1 stream 1: 0 10:00:00:00"), longWait);
}

void TestReadFlow::aFolderGoneWhileItsReadersWaitStopsNothing()
{
    startWaitingProbes(45);
    for (int row = 0; row < 60; ++row) {
        FileData file;
        file.baseName = QString("gone%1").arg(row);
        file.rowNumber = row;
        fixture->control().onAudioExtractReady(nullptr, file, 0);
    }
    reRead({makeSound("a.mov", 7, "\x01")}); // waits until nothing of the others runs or waits
    QCOMPARE(fixture->handlers(), 45);
    fixture->openGate("probes");
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 7 stream 1: 0 10:00:00:00"), longWait);
}

void TestReadFlow::stagesThatCannotCompleteEndInSilence_data()
{
    QTest::addColumn<bool>("isImport");
    QTest::addColumn<bool>("folderVanishes");
    QTest::newRow("import, extraction without a file") << true << false;
    QTest::newRow("import, vanished folder") << true << true;
    QTest::newRow("re-read, extraction without a file") << false << false;
    QTest::newRow("re-read, vanished folder") << false << true;
}

void TestReadFlow::stagesThatCannotCompleteEndInSilence()
{
    QFETCH(bool, isImport);
    QFETCH(bool, folderVanishes);
    const QJsonObject extraction{
        {"actions", QJsonArray{QJsonObject{{"touch", "extracting"}}, QJsonObject{{"waitFor", "gate"}}}}};
    const FileData good = makeSound("good.mov", 0, "\x01");
    const FileData empty = makeSound("empty.mov", 1, "\x01", plan("extract", extraction));
    if (isImport) {
        fixture->actAsFileTable();
        fixture->control().onIterateThroughDir(
            {fixture->mediaUrl("good.mov"), fixture->mediaUrl("empty.mov")});
    } else {
        reRead({good, empty});
    }
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(fixture->mediaPath("extracting")), longWait);
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("read 0 stream 1: 0 10:00:00:00"), longWait);
    if (folderVanishes)
        QVERIFY(QDir(fixture->temporaryPath()).removeRecursively());
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importIdle"), longWait);
    QCOMPARE(fixture->eventsOf("read ").size(), 1);
    QVERIFY(!fixture->events.contains("importReady") && !fixture->events.contains("readingFinished"));
    QVERIFY(!fixture->hasTemporaryFolder());

    // Nothing of it is left in the counters.
    fixture->events.clear();
    reRead({good});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->eventsOf("import "),
             (QStringList{"import 1/2 prepare files for reading...", "import 2/2 reading audio TC..."}));
}

void TestReadFlow::aReReadWaitsForTheImportUnderWay()
{
    fixture->actAsFileTable();
    fixture->makeFile("a.mov", plan("probe", waiting()));
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov")});
    const FileData other = makeSound("b.mov", 8, "\x01");
    reRead({other});
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools(), QStringList{"probe a.mov"}, longWait);
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    const auto importEnd = fixture->events.indexOf("importReady");
    QVERIFY(importEnd > 0);
    QVERIFY(fixture->events.indexOf("read 0 stream 1: 0 10:00:00:00") < importEnd);
    QVERIFY(fixture->events.indexOf("read 8 stream 1: 0 10:00:00:00") > importEnd);
    QCOMPARE(faketools::calls(fixture->mediaPath("a.mov"), "read").size(), 1);
}

void TestReadFlow::aDropWaitsForTheReReadUnderWay()
{
    fixture->actAsFileTable();
    reRead({makeSound("a.mov", 8, "\x01", plan("read", waiting()))});
    fixture->makeFile("b.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("b.mov")});
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools(), (QStringList{"extract a.mov", "read a.mov"}),
                              longWait);
    QCOMPARE(fixture->eventsOf("found ").size(), 0);
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QVERIFY(fixture->events.indexOf("readingFinished") < fixture->events.indexOf("found b.mov"));
    QVERIFY(fixture->events.contains("readingFinished"));
    QVERIFY(fixture->events.contains("read 0 stream 1: 0 10:00:00:00"));
}

void TestReadFlow::aReReadWaitsForTheReReadUnderWay()
{
    AudioTCOptions options;
    options.channel = 5;
    options.frameRate = -1.0;
    const FileData first = makeSound("a.mov", 0, "\x01",
                                     plan("extract", {{"actions", QJsonArray{QJsonObject{{"waitFor", "gate"}},
                                                                             QJsonObject{{"work", true}}}}}));
    const FileData second = makeSound("b.mov", 1, "\x01");
    reRead({first});
    fixture->control().onUpdateAudioTCInfo({second}, options);
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->count("readingFinished"), 2, longWait);
    QCOMPARE(faketools::calls(first.absoluteFilePath, "read").constFirst().arguments.size(),
             1); // its own options
    QCOMPARE(faketools::calls(second.absoluteFilePath, "read").constFirst().arguments.mid(1),
             QStringList{"-c5"});
}

void TestReadFlow::aDropDuringAnImportRunsAtOnce()
{
    fixture->actAsFileTable();
    fixture->makeFile("a.mov", plan("probe", waiting()));
    fixture->makeFile("b.mov", plan("read", waiting()));
    fixture->control().onIterateThroughDir({fixture->mediaUrl("a.mov")});
    reRead({makeSound("c.mov", 9, "\x01")}); // waits, and does not hold the drop up
    fixture->control().onIterateThroughDir({fixture->mediaUrl("b.mov")});
    QCOMPARE(fixture->events, (QStringList{"found a.mov", "found b.mov"}));
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("probed 1: 0"), longWait);
    fixture->openGate();
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(fixture->count("importReady"), 1);
    QCOMPARE(fixture->eventsOf("import 6/6").size(), 1);
}

void TestReadFlow::whatWaitsIsServedInOrder()
{
    fixture->actAsFileTable();
    reRead({makeSound("a.mov", 50, "\x01", plan("read", waiting()))});
    fixture->makeFile("b.mov");
    fixture->makeFile("d.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("b.mov")});
    fixture->control().onIterateThroughDir({});
    fixture->control().onIterateThroughDir({fixture->mediaUrl("d.mov")});
    reRead({makeSound("c.mov", 60, "\x01")});
    reRead({});
    reRead({makeSound("c.mov", 61, "\x01")});
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->count("readingFinished"), 3, longWait);
    QCOMPARE(fixture->eventsOf("found "), (QStringList{"found b.mov", "found d.mov"}));
    QCOMPARE(fixture->count("importReady"), 1); // the drops that waited make one import
    const QStringList order = fixture->eventsOf("read");
    QCOMPARE(order.constFirst(), QString("read 50 stream 1: 0 10:00:00:00"));
    QCOMPARE(order.mid(order.size() - 4),
             (QStringList{"read 60 stream 1: 0 10:00:00:00", "readingFinished",
                          "read 61 stream 1: 0 10:00:00:00", "readingFinished"}));
    QCOMPARE(fixture->count("importIdle"), 0);
}

QTEST_GUILESS_MAIN(TestReadFlow)
#include "tst_readflow.moc"

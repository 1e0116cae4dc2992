// SPDX-License-Identifier: MIT
#include "testkit/fixtures/controllerfixture.h"

#include "testkit/faketools/faketools.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QMap>
#include <QTest>

#include <utility>

namespace
{

QJsonObject exporting(const QJsonObject &part)
{
    return {{"export", part}};
}

QJsonObject waiting()
{
    return exporting({{"waitFor", "gate"}});
}

QJsonObject failing()
{
    return exporting({{"exitCode", 1}});
}

} // namespace

class TestExportFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anExportOfNothingSaysNothing();
    void aBatchThatSucceedsEndsReady();
    void everyHandlerGetsFifteenSteps();
    void aBatchWithAFailureNamesTheFile();
    void everyEndNamesItsRowAndFile();
    void noMoreToolsRunThanTheLimit();
    void aCrashIsAFailure();
    void aFailedFileDoesNotStopTheBatch();
    void progressIsCountedInFifteenUnitsAFile();
    void ninetyFiveExportsRunAtMostFortyFiveAtOnce();
    void cancellingReportsBeforeItReachesTheHandlers();
    void cancellingNinetyFiveExportsEndsOnce();
    void cancellingWhileTheBatchStartsDropsIt();
    void aCancelledBatchEndsInTheOrderOfItsPath_data();
    void aCancelledBatchEndsInTheOrderOfItsPath();
    void theOutputOfACancelledExportIsDeleted_data();
    void theOutputOfACancelledExportIsDeleted();
    void theNextBatchIsNotCancelled();
    void exportsRunBesideAnImport();
    void filesOfOneNameGetOutputsOfTheirOwn();
    void aSecondBatchTakesOverTheCounters();

private:
    ExportOptions options() const;
    void startExport(const QVector<FileData> &files) { fixture->control().onExportReq(files, options()); }
    QString output(const QString &name) const { return fixture->mediaPath("out/" + name); }
    QStringList lastEvents(int count) const { return fixture->events.mid(fixture->events.size() - count); }
    int exportsEnded() const { return static_cast<int>(fixture->eventsOf("exportReady").size()); }

    std::unique_ptr<ControllerFixture> fixture;
};

void TestExportFlow::init()
{
    fixture = std::make_unique<ControllerFixture>();
    QVERIFY(QDir().mkpath(fixture->mediaPath("out")));
}

void TestExportFlow::cleanup()
{
    fixture.reset();
}

/// Pass-through into QuickTime.
ExportOptions TestExportFlow::options() const
{
    ExportOptions options;
    options.exportDir = fixture->mediaPath("out");
    options.videoType = 5;
    options.progressSteps = 3; // the controller puts its own in place
    return options;
}

void TestExportFlow::anExportOfNothingSaysNothing()
{
    startExport({});
    QCoreApplication::processEvents();
    QCOMPARE(fixture->events, QStringList());
    startExport({fixture->makeFile("a.mov", failing()), fixture->makeFile("b.mov")});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    const auto before = fixture->events.size();
    startExport({});
    QCOMPARE(fixture->events.size(), before);
    startExport({fixture->makeFile("b.mov")});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 2, longWait);
    QCOMPARE(fixture->events.last(), QString("exportReady 0 []")); // the failure is forgotten
}

void TestExportFlow::aBatchThatSucceedsEndsReady()
{
    startExport({fixture->makeFile("a.mov"), fixture->makeFile("b.mov")});
    QCOMPARE(fixture->events, (QStringList{"export 0/1 exporting files...", "exportStarted"}));
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(lastEvents(3),
             (QStringList{"export 30/30 exporting files...", "export 2/2 ready", "exportReady 0 []"}));
    QVERIFY(QFileInfo::exists(output("a.MOV")) && QFileInfo::exists(output("b.MOV")));
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

void TestExportFlow::everyHandlerGetsFifteenSteps()
{
    startExport({fixture->makeFile("a.mov", failing())});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(fixture->events, (QStringList{"export 0/1 exporting files...", "exportStarted",
                                           "export 15/15 exporting files...", // the handler's
                                           "export 15/15 exporting files...", // the file has ended
                                           "export 1/1 ready", "exportReady 2 [a.mov]"}));
}

void TestExportFlow::aBatchWithAFailureNamesTheFile()
{
    startExport(
        {fixture->makeFile("a.mov"), fixture->makeFile("take.2.mov", failing()), fixture->makeFile("c.mov")});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(lastEvents(3), (QStringList{"export 45/45 exporting files...", "export 3/3 ready",
                                         "exportReady 2 [take.2.mov]"}));
}

void TestExportFlow::everyEndNamesItsRowAndFile()
{
    QMap<int, QString> ends;
    connect(&fixture->control(), &MainControl::fileExported, &fixture->control(),
            [&ends](int row, const QString &path, int exitCode) {
                ends[row] = path + ' ' + QString::number(exitCode);
            });
    startExport({fixture->makeFile("card1/a.mov", exporting({{"exitCode", 7}}), 3),
                 fixture->makeFile("card2/a.mov", {}, 5)});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(ends, (QMap<int, QString>{{3, output("a.MOV 7")}, {5, output("a_1.MOV 0")}}));
}

void TestExportFlow::noMoreToolsRunThanTheLimit()
{
    fixture->control().setJobLimit(3);
    startExport(fixture->makeFiles(8, waiting()));
    QCOMPARE(fixture->handlers(), 3);
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(fixture->startedTools().size(), 8);
    QVERIFY(fixture->mostToolsAtOnce() <= 3);
}

void TestExportFlow::aCrashIsAFailure()
{
    startExport({fixture->makeFile("a.mov", exporting({{"crash", true}}))});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(fixture->events.last(), QString("exportReady 2 [a.mov]"));
}

void TestExportFlow::aFailedFileDoesNotStopTheBatch()
{
    startExport({fixture->makeFile("a.mov", failing()), fixture->makeFile("b.mov", waiting())});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("export 15/30 exporting files..."), longWait);
    QCOMPARE(exportsEnded(), 0);
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QVERIFY(QFileInfo::exists(output("b.MOV")));
}

void TestExportFlow::progressIsCountedInFifteenUnitsAFile()
{
    fixture->control().onExportProgress(4); // of no batch
    QCOMPARE(fixture->events, QStringList{"export 4/0 "});
    startExport({fixture->makeFile("a.mov", waiting()), fixture->makeFile("b.mov", waiting())});
    fixture->control().onExportProgress(7);
    fixture->control().onExportProgress(0);
    fixture->control().onExportProgress(3);
    QCOMPARE(lastEvents(3), (QStringList{"export 7/30 exporting files...", "export 7/30 exporting files...",
                                         "export 10/30 exporting files..."}));
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
}

void TestExportFlow::ninetyFiveExportsRunAtMostFortyFiveAtOnce()
{
    startExport(fixture->makeFiles(95, waiting()));
    QCOMPARE(fixture->handlers(), 45);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(lastEvents(3),
             (QStringList{"export 1425/1425 exporting files...", "export 95/95 ready", "exportReady 0 []"}));
    QCOMPARE(fixture->startedTools().size(), 95);
    QCOMPARE(fixture->mostToolsAtOnce(), 45);
    QCOMPARE(QDir(output("")).entryList({"*.MOV"}).size(), 95);
}

void TestExportFlow::cancellingReportsBeforeItReachesTheHandlers()
{
    fixture->control().onExportCancel(); // nothing runs: the same two signals
    QCOMPARE(fixture->events, (QStringList{"export 0/0 cancelling export...", "cancelExportReq"}));
    fixture->events.clear();

    startExport({fixture->makeFile("a.mov", waiting())});
    fixture->control().onExportProgress(6);
    fixture->events.clear();
    fixture->control().onExportCancel();
    QCOMPARE(fixture->events, (QStringList{"export 6/15 cancelling export...", "cancelExportReq"}));
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
}

void TestExportFlow::cancellingNinetyFiveExportsEndsOnce()
{
    startExport(fixture->makeFiles(95, waiting()));
    QTRY_COMPARE_WITH_TIMEOUT(fixture->startedTools().size(), 45, longWait);
    fixture->events.clear();
    fixture->control().onExportCancel();
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QCoreApplication::processEvents();

    QCOMPARE(exportsEnded(), 1);
    QCOMPARE(fixture->startedTools().size(), 45); // none of those that waited
    const QStringList ended = fixture->eventsOf("exportReady 1 [");
    QCOMPARE(ended.size(), 1);
    QCOMPARE(ended.constFirst().count(".mov"), 45); // killed, so they failed
    QCOMPARE(fixture->count("export 95/95 cancelling export..."), 1);
    // One signal for the cancelling, then for each handler that ends one of its progress and one of its end,
    // and one for each file dropped from the queue; the first end drops all fifty.
    const QStringList counted = fixture->eventsOf("export ").filter("/1425 cancelling export...");
    QCOMPARE(counted.size(), 1 + 45 * 2 + 50);
    for (int i = 3; i < 53; ++i)
        QCOMPARE(counted.at(i), QString("export 15/1425 cancelling export..."));
    QCOMPARE(lastEvents(3).at(0), QString("export 95/95 cancelling export..."));
    QCOMPARE(lastEvents(2).at(0), QString("export 0/1 export cancelled"));
    QCOMPARE(QDir(output("")).entryList({"*.MOV"}).size(), 0);
}

void TestExportFlow::cancellingWhileTheBatchStartsDropsIt()
{
    QObject canceller;
    connect(&fixture->control(), &MainControl::exportStarted, &canceller,
            [this] { fixture->control().onExportCancel(); });
    startExport({fixture->makeFile("a.mov"), fixture->makeFile("b.mov")});
    QCOMPARE(fixture->events,
             (QStringList{
                 "export 0/1 exporting files...", "exportStarted", "export 0/30 cancelling export...",
                 "cancelExportReq", "export 0/30 cancelling export...", "export 0/30 cancelling export...",
                 "export 2/2 cancelling export...", "exportReady 1 []", "export 0/1 export cancelled"}));
    QCOMPARE(fixture->handlers(), 0);
}

void TestExportFlow::aCancelledBatchEndsInTheOrderOfItsPath_data()
{
    QTest::addColumn<bool>("runs");
    QTest::addColumn<QStringList>("end");
    QTest::newRow("the last file ran: progress, then the end")
        << true
        << QStringList{"export 1/1 cancelling export...", "export 0/1 export cancelled",
                       "exportReady 1 [a.mov]"};
    QTest::newRow("the last file waited: the end, then progress")
        << false
        << QStringList{"export 0/15 cancelling export...", "exportReady 1 []", "export 0/1 export cancelled"};
}

void TestExportFlow::aCancelledBatchEndsInTheOrderOfItsPath()
{
    QFETCH(bool, runs);
    QFETCH(QStringList, end);
    if (!runs) {
        const QVector<FileData> probes =
            fixture->makeFiles(45, {{"probe", QJsonObject{{"waitFor", "gate"}}}});
        for (const FileData &file : probes)
            fixture->control().onFFProbeFile(file, file.rowNumber);
    }
    startExport({fixture->makeFile("a.mov", waiting())});
    fixture->control().onExportCancel();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), runs ? 1 : 0, longWait);
    fixture->openGate(); // the first probe that ends lets the export queue be served
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
    QStringList events;
    for (const QString &event : std::as_const(fixture->events)) {
        if (event.startsWith("export"))
            events += event;
    }
    QCOMPARE(events.mid(events.size() - 3), end);
}

void TestExportFlow::theOutputOfACancelledExportIsDeleted_data()
{
    QTest::addColumn<bool>("isKilled");
    QTest::addColumn<QString>("end");
    QTest::newRow("killed in mid-run") << true << "exportReady 1 [a.mov]";
    QTest::newRow("it succeeds all the same") << false << "exportReady 1 []";
}

void TestExportFlow::theOutputOfACancelledExportIsDeleted()
{
    QFETCH(bool, isKilled);
    const QJsonArray actions{QJsonObject{{"work", true}}, QJsonObject{{"waitFor", "gate"}}};
    startExport({fixture->makeFile("a.mov", exporting({{"actions", actions}}))});
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(output("a.MOV")), longWait);
    if (!isKilled)
        disconnect(&fixture->control(), &MainControl::cancelExportReq, nullptr, nullptr);
    fixture->control().onExportCancel();
    if (!isKilled)
        fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QTEST(fixture->events.last(), "end");
    QVERIFY(!QFileInfo::exists(output("a.MOV")));
    QVERIFY(QFileInfo::exists(fixture->mediaPath("a.mov")));
}

void TestExportFlow::theNextBatchIsNotCancelled()
{
    startExport({fixture->makeFile("a.mov", waiting())});
    fixture->control().onExportCancel();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    fixture->events.clear();
    startExport({fixture->makeFile("b.mov")});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(fixture->events.last(), QString("exportReady 0 []"));
    QVERIFY(fixture->events.filter("cancel").isEmpty());
    QVERIFY(QFileInfo::exists(output("b.MOV")));
}

void TestExportFlow::exportsRunBesideAnImport()
{
    fixture->actAsFileTable();
    startExport({fixture->makeFile("a.mov", waiting())});
    fixture->makeFile("b.mov");
    fixture->control().onIterateThroughDir({fixture->mediaUrl("b.mov")});
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("importReady"), longWait);
    QCOMPARE(exportsEnded(), 0);
    fixture->control().onUpdateAudioTCInfo({fixture->makeFile("b.mov", {}, 0)}, automaticReading());
    QTRY_VERIFY_WITH_TIMEOUT(fixture->events.contains("readingFinished"), longWait);
    QCOMPARE(exportsEnded(), 0);
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(fixture->events.last(), QString("exportReady 0 []"));
}

void TestExportFlow::filesOfOneNameGetOutputsOfTheirOwn()
{
    QVector<FileData> files;
    for (const char *card : {"card1", "card2", "card3"})
        files += fixture->makeFile(QString(card) + "/clip.mov");
    startExport(files);
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 1, longWait);
    QCOMPARE(fixture->events.last(), QString("exportReady 0 []"));
    QCOMPARE(QDir(output("")).entryList({"*.MOV"}, QDir::Files, QDir::Name),
             (QStringList{"clip.MOV", "clip_1.MOV", "clip_2.MOV"}));

    // A name whose export has ended without a file is free again.
    startExport({fixture->makeFile("x/other.mov", failing())});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 2, longWait);
    startExport({fixture->makeFile("y/other.mov")});
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 3, longWait);
    QVERIFY(QFileInfo::exists(output("other.MOV")));
}

void TestExportFlow::aSecondBatchTakesOverTheCounters()
{
    startExport({fixture->makeFile("a.mov", waiting()), fixture->makeFile("b.mov", waiting())});
    startExport({fixture->makeFile("c.mov", waiting())});
    fixture->events.clear();
    fixture->openGate();
    QTRY_COMPARE_WITH_TIMEOUT(exportsEnded(), 3, longWait); // one file is all that the second batch counts
    QCOMPARE(fixture->count("export 1/1 ready"), 1);
    QTRY_COMPARE_WITH_TIMEOUT(fixture->handlers(), 0, longWait);
}

QTEST_GUILESS_MAIN(TestExportFlow)
#include "tst_exportflow.moc"

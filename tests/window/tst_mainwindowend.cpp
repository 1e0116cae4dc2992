// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>

namespace
{

using Ending = std::function<void(WindowBench &)>;

} // namespace

Q_DECLARE_METATYPE(Ending)

/// How the program ends: by menu, by the close box, by a signal and with the session, also during an export.
class TestMainWindowEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void quittingDuringAnExportIsAskedFor_data();
    void quittingDuringAnExportIsAskedFor();
    void aConfirmedQuitClosesWhateverTheResult_data();
    void aConfirmedQuitClosesWhateverTheResult();
    void quittingAnExportThatHasEndedQuitsAtOnce_data();
    void quittingAnExportThatHasEndedQuitsAtOnce();
    void theEndOfASessionAsksNothing();
    void theEndOfASessionWithoutExportClosesAtOnce();
    void anExportThatIsEndedLeavesNothing_data();
    void anExportThatIsEndedLeavesNothing();
    void theEndOfASessionIsWaitedForUntilNothingIsLeft();
    void theEndOfASessionDoesNotWaitForABatchThatIsOver_data();
    void theEndOfASessionDoesNotWaitForABatchThatIsOver();
    void theEndOfASessionClosesWhatStandsOpen_data();
    void theEndOfASessionClosesWhatStandsOpen();
    void theWindowClosesAtOnceWhenNothingRuns();
};

void TestMainWindowEnd::initTestCase()
{
    registerRecordTypes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

void TestMainWindowEnd::quittingDuringAnExportIsAskedFor_data()
{
    QTest::addColumn<bool>("byMenu");
    QTest::addColumn<bool>("yes");
    QTest::newRow("by menu, yes") << true << true;
    QTest::newRow("by menu, no") << true << false;
    QTest::newRow("by the close box, yes") << false << true;
    QTest::newRow("by the close box, no") << false << false;
}

void TestMainWindowEnd::quittingDuringAnExportIsAskedFor()
{
    QFETCH(bool, byMenu);
    QFETCH(bool, yes);
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    bench.beginExport();
    bench.boxes.answerNext(yes ? QMessageBox::Yes : QMessageBox::No);
    if (byMenu)
        bench.child<QAction>("exitAction")->trigger();
    else
        QVERIFY(!bench.window->close());
    QVERIFY(bench.boxes.answered({"Quit Application"}));
    QCOMPARE(questionOf(bench.boxes.seen().at(0)),
             QString("Are you sure you want to quit\n(and cancel the export process)?"));
    QVERIFY(bench.window->isVisible());
    QCOMPARE(cancelled.count(), yes ? 1 : 0);
    QCOMPARE(bench.cancelButton->isVisible(), !yes);
    bench.endExport(1);
    QCOMPARE(bench.window->isVisible(), !yes);
}

void TestMainWindowEnd::aConfirmedQuitClosesWhateverTheResult_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("all exported meanwhile") << 0;
    QTest::newRow("cancelled") << 1;
    QTest::newRow("some failed") << 2;
    QTest::newRow("unknown") << 3;
}

void TestMainWindowEnd::aConfirmedQuitClosesWhateverTheResult()
{
    QFETCH(int, result);
    WindowBench bench;
    bench.child<QAction>("readAudioTCAction")->trigger();
    bench.beginExport();
    bench.boxes.answerNext(QMessageBox::Yes);
    bench.child<QAction>("exitAction")->trigger();
    QVERIFY(bench.window->isVisible());
    if (result == 0 || result == 2)
        bench.boxes.answerNext(QMessageBox::Ok);
    bench.endExport(result);
    QVERIFY(bench.boxes.allGiven());
    QVERIFY(!bench.window->isVisible());
    QVERIFY(!topLevel("audioTCWindow")->isVisible());
}

void TestMainWindowEnd::quittingAnExportThatHasEndedQuitsAtOnce_data()
{
    QTest::addColumn<bool>("byMenu");
    QTest::newRow("by menu") << true;
    QTest::newRow("by the close box") << false;
}

void TestMainWindowEnd::quittingAnExportThatHasEndedQuitsAtOnce()
{
    QFETCH(bool, byMenu);
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    bench.beginExport();
    bench.boxes.answerNext(QMessageBox::Yes, [&bench] { bench.endExport(1); });
    if (byMenu)
        bench.child<QAction>("exitAction")->trigger();
    else
        QVERIFY(bench.window->close());
    QVERIFY(!bench.window->isVisible());
    QCOMPARE(cancelled.count(), 0);
}

void TestMainWindowEnd::theEndOfASessionAsksNothing()
{
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    bench.beginExport();
    bench.window->quitWithoutAsking();
    QCOMPARE(cancelled.count(), 1);
    QVERIFY(bench.window->isVisible());
    QVERIFY2(!bench.window->close(), "closed by the session again, without a question");
    bench.endExport(0);
    QVERIFY(bench.boxes.answered({}));
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowEnd::theEndOfASessionWithoutExportClosesAtOnce()
{
    WindowBench bench;
    bench.window->quitWithoutAsking();
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowEnd::anExportThatIsEndedLeavesNothing_data()
{
    QTest::addColumn<Ending>("end");
    QTest::addColumn<bool>("windowStays");
    QTest::newRow("cancelled") << Ending([](WindowBench &bench) {
        bench.boxes.answerNext(QMessageBox::Yes);
        QTest::mouseClick(bench.cancelButton, Qt::LeftButton);
    }) << true;
    QTest::newRow("quit by menu") << Ending([](WindowBench &bench) {
        bench.boxes.answerNext(QMessageBox::Yes);
        bench.child<QAction>("exitAction")->trigger();
    }) << false;
    QTest::newRow("quit by the close box") << Ending([](WindowBench &bench) {
        bench.boxes.answerNext(QMessageBox::Yes);
        bench.window->close();
    }) << false;
    QTest::newRow("terminated") << Ending([](WindowBench &bench) { bench.window->quitWithoutAsking(); })
                                << false;
    QTest::newRow("the session ends")
        << Ending([](WindowBench &bench) { bench.window->onSessionEnd(); }) << false;
}

void TestMainWindowEnd::anExportThatIsEndedLeavesNothing()
{
    QFETCH(Ending, end);
    QFETCH(bool, windowStays);
    WindowBench bench;
    QVERIFY(bench.startHangingExport());
    end(bench);
    QTRY_VERIFY_WITH_TIMEOUT(!bench.child<QPushButton>("cancelButton")->isVisible(), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: export cancelled"), longWait);
    QCOMPARE(bench.exportedFiles(), QStringList());
    QVERIFY(!faketools::isAlive(bench.hangingTool()));
    QCOMPARE(bench.window->isVisible(), windowStays);
}

void TestMainWindowEnd::theEndOfASessionIsWaitedForUntilNothingIsLeft()
{
    WindowBench bench;
    QVERIFY(bench.startHangingExport());
    bench.window->onSessionEnd();
    QCOMPARE(bench.exportedFiles(), QStringList());
    QVERIFY(!faketools::isAlive(bench.hangingTool()));
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowEnd::theEndOfASessionDoesNotWaitForABatchThatIsOver_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::newRow("all exported") << 0;
    QTest::newRow("some failed") << 1;
}

void TestMainWindowEnd::theEndOfASessionDoesNotWaitForABatchThatIsOver()
{
    QFETCH(int, exitCode);
    constexpr qint64 atOnce = 2'000; // [ms] far less than the time that a running batch is given
    WindowBench bench;
    const QString file = bench.addFile("a.mov");
    QVERIFY(bench.import());
    faketools::setPlan(file, {{"export", QJsonObject{{"exitCode", exitCode}}}});
    const QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    qint64 waited = -1; // [ms]
    QTimer look;
    connect(&look, &QTimer::timeout, bench.window.get(), [&] {
        const QWidget *box = QApplication::activeModalWidget();
        if (!box || box->windowTitle() != "Export Result")
            return;
        look.stop();
        QElapsedTimer timer;
        timer.start();
        bench.window->onSessionEnd();
        waited = timer.elapsed();
    });
    look.start(5);
    bench.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(waited >= 0, longWait);
    QVERIFY2(waited < atOnce, qPrintable(QString("it took %1 ms").arg(waited)));
    QCOMPARE(cancelled.count(), 0);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!bench.window->isVisible());
    QCOMPARE(bench.exportedFiles().size(), exitCode == 0 ? 1 : 0);
}

void TestMainWindowEnd::theEndOfASessionClosesWhatStandsOpen_data()
{
    QTest::addColumn<Ending>("open");
    QTest::newRow("the question about cancelling")
        << Ending([](WindowBench &bench) { bench.cancelButton->click(); });
    QTest::newRow("the question about quitting")
        << Ending([](WindowBench &bench) { bench.child<QAction>("exitAction")->trigger(); });
    QTest::newRow("the result of the export") << Ending([](WindowBench &bench) { bench.endExport(0); });
    QTest::newRow("the About box") << Ending(
        [](WindowBench &bench) { bench.child<QAction>("aboutAction")->trigger(); });
}

void TestMainWindowEnd::theEndOfASessionClosesWhatStandsOpen()
{
    QFETCH(Ending, open);
    WindowBench bench;
    bench.beginExport();
    bool stoodOpen = false;
    QTimer::singleShot(0, bench.window.get(), [&] {
        stoodOpen = QApplication::activeModalWidget();
        bench.window->quitWithoutAsking();
    });
    open(bench);
    QVERIFY(stoodOpen);
    QVERIFY(!QApplication::activeModalWidget());
    bench.endExport(1);
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowEnd::theWindowClosesAtOnceWhenNothingRuns()
{
    {
        const WindowBench bench;
        bench.child<QAction>("readAudioTCAction")->trigger();
        bench.window->close();
        QVERIFY(!bench.window->isVisible());
        QVERIFY(!topLevel("audioTCWindow")->isVisible());
    }
    {
        const WindowBench bench;
        bench.child<QAction>("exportAllAction")->trigger();
        bench.child<QAction>("exitAction")->trigger();
        QVERIFY(!bench.window->isVisible());
        QVERIFY(!topLevel("exportWindow")->isVisible());
    }
}

QTEST_MAIN(TestMainWindowEnd)
#include "tst_mainwindowend.moc"

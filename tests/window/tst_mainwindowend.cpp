// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/windowfixture.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>

namespace
{

using Ending = std::function<void(WindowFixture &)>;

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
    WindowFixture fixture;
    QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    fixture.beginExport();
    fixture.boxes.answerNext(yes ? QMessageBox::Yes : QMessageBox::No);
    if (byMenu)
        fixture.child<QAction>("exitAction")->trigger();
    else
        QVERIFY(!fixture.window->close());
    QVERIFY(fixture.boxes.answered({"Quit Application"}));
    QCOMPARE(questionOf(fixture.boxes.seen().at(0)),
             QString("Are you sure you want to quit\n(and cancel the export process)?"));
    QVERIFY(fixture.window->isVisible());
    QCOMPARE(cancelled.count(), yes ? 1 : 0);
    QCOMPARE(fixture.cancelButton->isVisible(), !yes);
    fixture.endExport(1);
    QCOMPARE(fixture.window->isVisible(), !yes);
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
    WindowFixture fixture;
    fixture.child<QAction>("readAudioTCAction")->trigger();
    fixture.beginExport();
    fixture.boxes.answerNext(QMessageBox::Yes);
    fixture.child<QAction>("exitAction")->trigger();
    QVERIFY(fixture.window->isVisible());
    if (result == 0 || result == 2)
        fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.endExport(result);
    QVERIFY(fixture.boxes.allGiven());
    QVERIFY(!fixture.window->isVisible());
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
    WindowFixture fixture;
    QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    fixture.beginExport();
    fixture.boxes.answerNext(QMessageBox::Yes, [&fixture] { fixture.endExport(1); });
    if (byMenu)
        fixture.child<QAction>("exitAction")->trigger();
    else
        QVERIFY(fixture.window->close());
    QVERIFY(!fixture.window->isVisible());
    QCOMPARE(cancelled.count(), 0);
}

void TestMainWindowEnd::theEndOfASessionAsksNothing()
{
    WindowFixture fixture;
    QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    fixture.beginExport();
    fixture.window->quitWithoutAsking();
    QCOMPARE(cancelled.count(), 1);
    QVERIFY(fixture.window->isVisible());
    QVERIFY2(!fixture.window->close(), "closed by the session again, without a question");
    fixture.endExport(0);
    QVERIFY(fixture.boxes.answered({}));
    QVERIFY(!fixture.window->isVisible());
}

void TestMainWindowEnd::theEndOfASessionWithoutExportClosesAtOnce()
{
    WindowFixture fixture;
    fixture.window->quitWithoutAsking();
    QVERIFY(!fixture.window->isVisible());
}

void TestMainWindowEnd::anExportThatIsEndedLeavesNothing_data()
{
    QTest::addColumn<Ending>("end");
    QTest::addColumn<bool>("windowStays");
    QTest::newRow("cancelled") << Ending([](WindowFixture &fixture) {
        fixture.boxes.answerNext(QMessageBox::Yes);
        QTest::mouseClick(fixture.cancelButton, Qt::LeftButton);
    }) << true;
    QTest::newRow("quit by menu") << Ending([](WindowFixture &fixture) {
        fixture.boxes.answerNext(QMessageBox::Yes);
        fixture.child<QAction>("exitAction")->trigger();
    }) << false;
    QTest::newRow("quit by the close box") << Ending([](WindowFixture &fixture) {
        fixture.boxes.answerNext(QMessageBox::Yes);
        fixture.window->close();
    }) << false;
    QTest::newRow("terminated") << Ending([](WindowFixture &fixture) { fixture.window->quitWithoutAsking(); })
                                << false;
    QTest::newRow("the session ends")
        << Ending([](WindowFixture &fixture) { fixture.window->onSessionEnd(); }) << false;
}

void TestMainWindowEnd::anExportThatIsEndedLeavesNothing()
{
    QFETCH(Ending, end);
    QFETCH(bool, windowStays);
    WindowFixture fixture;
    QVERIFY(fixture.startHangingExport());
    end(fixture);
    QTRY_VERIFY_WITH_TIMEOUT(!fixture.child<QPushButton>("cancelButton")->isVisible(), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: export cancelled"), longWait);
    QCOMPARE(fixture.exportedFiles(), QStringList());
    QVERIFY(!faketools::isAlive(fixture.hangingTool()));
    QCOMPARE(fixture.window->isVisible(), windowStays);
}

void TestMainWindowEnd::theEndOfASessionIsWaitedForUntilNothingIsLeft()
{
    WindowFixture fixture;
    QVERIFY(fixture.startHangingExport());
    fixture.window->onSessionEnd();
    QCOMPARE(fixture.exportedFiles(), QStringList());
    QVERIFY(!faketools::isAlive(fixture.hangingTool()));
    QVERIFY(!fixture.window->isVisible());
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
    WindowFixture fixture;
    const QString file = fixture.addFile("a.mov");
    QVERIFY(fixture.import());
    faketools::setPlan(file, {{"export", QJsonObject{{"exitCode", exitCode}}}});
    const QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    qint64 waited = -1; // [ms]
    QTimer look;
    connect(&look, &QTimer::timeout, fixture.window.get(), [&] {
        const QWidget *box = QApplication::activeModalWidget();
        if (!box || box->windowTitle() != "Export Result")
            return;
        look.stop();
        QElapsedTimer timer;
        timer.start();
        fixture.window->onSessionEnd();
        waited = timer.elapsed();
    });
    look.start(5);
    fixture.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(waited >= 0, longWait);
    QVERIFY2(waited < atOnce, qPrintable(QString("it took %1 ms").arg(waited)));
    QCOMPARE(cancelled.count(), 0);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!fixture.window->isVisible());
    QCOMPARE(fixture.exportedFiles().size(), exitCode == 0 ? 1 : 0);
}

void TestMainWindowEnd::theEndOfASessionClosesWhatStandsOpen_data()
{
    QTest::addColumn<Ending>("open");
    QTest::newRow("the question about cancelling")
        << Ending([](WindowFixture &fixture) { fixture.cancelButton->click(); });
    QTest::newRow("the question about quitting")
        << Ending([](WindowFixture &fixture) { fixture.child<QAction>("exitAction")->trigger(); });
    QTest::newRow("the result of the export") << Ending([](WindowFixture &fixture) { fixture.endExport(0); });
    QTest::newRow("the About box") << Ending(
        [](WindowFixture &fixture) { fixture.child<QAction>("aboutAction")->trigger(); });
}

void TestMainWindowEnd::theEndOfASessionClosesWhatStandsOpen()
{
    QFETCH(Ending, open);
    WindowFixture fixture;
    fixture.beginExport();
    bool stoodOpen = false;
    QTimer::singleShot(0, fixture.window.get(), [&] {
        stoodOpen = QApplication::activeModalWidget();
        fixture.window->quitWithoutAsking();
    });
    open(fixture);
    QVERIFY(stoodOpen);
    QVERIFY(!QApplication::activeModalWidget());
    fixture.endExport(1);
    QVERIFY(!fixture.window->isVisible());
}

void TestMainWindowEnd::theWindowClosesAtOnceWhenNothingRuns()
{
    {
        const WindowFixture fixture;
        fixture.child<QAction>("readAudioTCAction")->trigger();
        fixture.window->close();
        QVERIFY(!fixture.window->isVisible());
        QVERIFY(!topLevel("audioTCWindow")->isVisible());
    }
    {
        const WindowFixture fixture;
        fixture.child<QAction>("exportAllAction")->trigger();
        fixture.child<QAction>("exitAction")->trigger();
        QVERIFY(!fixture.window->isVisible());
        QVERIFY(!topLevel("exportWindow")->isVisible());
    }
}

QTEST_MAIN(TestMainWindowEnd)
#include "tst_mainwindowend.moc"

// SPDX-License-Identifier: MIT
#include "app/recordtypes.h"
#include "tests/fakes/faketools.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace
{

constexpr int patience = 60000; // [ms]

void progress(MainWindow &window, const QString &text)
{
    QMetaObject::invokeMethod(&window, "statusProgressUpdate", Q_ARG(int, 1), Q_ARG(int, 15),
                              Q_ARG(QString, text));
}

/// What a batch that has ended reports.
void endExport(MainWindow &window, int result, const QStringList &failed = {})
{
    QMetaObject::invokeMethod(&window, "exportReady", Q_ARG(int, result), Q_ARG(QStringList, failed));
}

void beginExport(MainWindow &window)
{
    QMetaObject::invokeMethod(&window, "onExportStart");
}

/// What \a box asks; empty when it is no question that is answered with Yes or No, without a default.
QString questionOf(const MessageBoxAnswers::Box &box)
{
    const bool isQuestion = box.icon == "question" && box.buttons == (QMessageBox::Yes | QMessageBox::No) &&
                            box.defaultButton.isEmpty();
    return isQuestion ? box.text : QString();
}

using Ending = std::function<void(WindowBench &)>;

} // namespace

Q_DECLARE_METATYPE(Ending)

class TestMainWindowMessages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theAboutBoxTellsVersionAndWebPage();
    void aNewerVersionIsAnnounced_data();
    void aNewerVersionIsAnnounced();
    void anExportThatStartsOffersToCancel();
    void aFinishedExportIsTold();
    void failedFilesAreTold_data();
    void failedFilesAreTold();
    void aCancelledExportNeedsNoMessage();
    void anUnknownResultChangesNoText();
    void cancellingIsAskedFor_data();
    void cancellingIsAskedFor();
    void progressAfterCancellingKeepsTheText();
    void cancellingAnExportThatHasEndedDoesNothing();
    void quittingDuringAnExportIsAskedFor_data();
    void quittingDuringAnExportIsAskedFor();
    void aConfirmedQuitClosesWhateverTheResult_data();
    void aConfirmedQuitClosesWhateverTheResult();
    void quittingAnExportThatHasEndedQuitsAtOnce_data();
    void quittingAnExportThatHasEndedQuitsAtOnce();
    void theEndOfASessionAsksNothing();
    void theEndOfASessionWithoutExportClosesAtOnce();
    void aWholeExportIsDone();
    void anExportWithFailuresNamesThem();
    void anExportThatIsEndedLeavesNothing_data();
    void anExportThatIsEndedLeavesNothing();
    void theEndOfASessionIsWaitedForUntilNothingIsLeft();
    void theEndOfASessionClosesWhatStandsOpen_data();
    void theEndOfASessionClosesWhatStandsOpen();
    void missingToolsAreNamedWithoutWaiting();

private:
    static bool allShown(const WindowBench &bench, const QStringList &titles);
};

void TestMainWindowMessages::initTestCase()
{
    registerRecordTypes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    qApp->setStyleSheet("QMessageBox { messagebox-text-interaction-flags: 5; }");
}

bool TestMainWindowMessages::allShown(const WindowBench &bench, const QStringList &titles)
{
    QStringList shown;
    for (const auto &box : bench.boxes.seen())
        shown += box.title;
    return bench.boxes.allGiven() && shown == titles;
}

void TestMainWindowMessages::theAboutBoxTellsVersionAndWebPage()
{
    WindowBench bench;
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.child<QAction>("aboutAction")->trigger();
    QVERIFY(allShown(bench, {"About"}));
    const auto &box = bench.boxes.seen().at(0);
    QCOMPARE(box.format, Qt::RichText);
    QVERIFY(
        box.text.startsWith("<p style='margin-right:5em;'>Ostrel Timecode Tool V1.00<br>Webpage: <a href='"));
    QCOMPARE(box.interaction, Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse);
}

void TestMainWindowMessages::aNewerVersionIsAnnounced_data()
{
    QTest::addColumn<uint>("majorVersion");
    QTest::addColumn<uint>("minorVersion");
    QTest::addColumn<QString>("description");
    QTest::addColumn<bool>("announced");
    QTest::newRow("0.9") << 0U << 9U << "x" << false;
    QTest::newRow("1.0") << 1U << 0U << "x" << false;
    QTest::newRow("1.1") << 1U << 1U << "x" << true;
    QTest::newRow("2.0 without description") << 2U << 0U << "" << true;
}

void TestMainWindowMessages::aNewerVersionIsAnnounced()
{
    QFETCH(uint, majorVersion);
    QFETCH(uint, minorVersion);
    QFETCH(QString, description);
    QFETCH(bool, announced);
    WindowBench bench;
    if (announced)
        bench.boxes.answerNext(QMessageBox::Ok);
    QMetaObject::invokeMethod(bench.window.get(), "versionInfoCheck", Q_ARG(uint, majorVersion),
                              Q_ARG(uint, minorVersion), Q_ARG(QString, description),
                              Q_ARG(QUrl, QUrl("http://host/a.zip")));
    if (!announced) {
        QVERIFY(allShown(bench, {}));
        return;
    }
    QVERIFY(allShown(bench, {"New Version Available"}));
    const auto &box = bench.boxes.seen().at(0);
    QCOMPARE(box.format, Qt::RichText);
    QCOMPARE(box.icon, QString());
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(box.text.contains("<a href='http://host/a.zip'>http://host/a.zip</a></p>"));
    QCOMPARE(box.text.contains("Details:"), !description.isEmpty());
    QCOMPARE(box.interaction, Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse);
}

void TestMainWindowMessages::anExportThatStartsOffersToCancel()
{
    const WindowBench bench;
    beginExport(*bench.window);
    QVERIFY(bench.cancelButton->isVisible());
    QVERIFY(!bench.child<QAction>("exportAction")->isEnabled());
    QVERIFY(!bench.child<QAction>("exportAllAction")->isEnabled());
    endExport(*bench.window, 1);
    QVERIFY(!bench.cancelButton->isVisible());
    QVERIFY(bench.child<QAction>("exportAction")->isEnabled());
    QVERIFY(bench.child<QAction>("exportAllAction")->isEnabled());
}

void TestMainWindowMessages::aFinishedExportIsTold()
{
    WindowBench bench;
    beginExport(*bench.window);
    progress(*bench.window, "ready");
    bench.boxes.answerNext(QMessageBox::Ok, [&bench] {
        QCOMPARE(bench.status(), QString("Status: ready"));
        QVERIFY2(!bench.child<QAction>("exportAction")->isEnabled(), "until the message has been answered");
    });
    endExport(*bench.window, 0);
    QVERIFY(allShown(bench, {"Export Result"}));
    const auto &box = bench.boxes.seen().at(0);
    QCOMPARE(box.text, QString("Ostrel did the job!"));
    QCOMPARE(box.icon, QString("information"));
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(bench.status(), QString("Status:"));
    QCOMPARE(bench.progressBar->value(), 0);
    QVERIFY(!bench.cancelButton->isVisible());
}

void TestMainWindowMessages::failedFilesAreTold_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("text");
    const QString heading("Export finished.\nErrors occured with the folliwing files:");
    QTest::newRow("five") << QStringList{"a.mov", "b.mov", "c.mov", "d.mov", "e.mov"}
                          << heading + "\na.mov, b.mov, c.mov, d.mov, \ne.mov";
    QTest::newRow("none") << QStringList{} << heading.chopped(2);
    QTest::newRow("names like markup stay as they are")
        << QStringList{"<b>a</b>.mov"} << heading + "\n<b>a</b>.mov";
}

void TestMainWindowMessages::failedFilesAreTold()
{
    QFETCH(QStringList, names);
    WindowBench bench;
    beginExport(*bench.window);
    bench.boxes.answerNext(QMessageBox::Ok);
    endExport(*bench.window, 2, names);
    QVERIFY(allShown(bench, {"Export Result"}));
    QTEST(bench.boxes.seen().at(0).text, "text");
    QCOMPARE(bench.boxes.seen().at(0).icon, QString("information"));
    QCOMPARE(bench.boxes.seen().at(0).format, Qt::PlainText);
    QCOMPARE(bench.status(), QString("Status:"));
}

void TestMainWindowMessages::aCancelledExportNeedsNoMessage()
{
    WindowBench bench;
    beginExport(*bench.window);
    endExport(*bench.window, 1);
    QVERIFY(allShown(bench, {}));
    QCOMPARE(bench.status(), QString("Status: export cancelled"));
    QCOMPARE(bench.progressBar->value(), 0);
}

void TestMainWindowMessages::anUnknownResultChangesNoText()
{
    WindowBench bench;
    beginExport(*bench.window);
    progress(*bench.window, "exporting files...");
    endExport(*bench.window, 3);
    QVERIFY(allShown(bench, {}));
    QCOMPARE(bench.status(), QString("Status: exporting files..."));
    QVERIFY(!bench.cancelButton->isVisible());
}

void TestMainWindowMessages::cancellingIsAskedFor_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void TestMainWindowMessages::cancellingIsAskedFor()
{
    QFETCH(bool, yes);
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    beginExport(*bench.window);
    progress(*bench.window, "exporting files...");
    bench.boxes.answerNext(yes ? QMessageBox::Yes : QMessageBox::No);
    QTest::mouseClick(bench.cancelButton, Qt::LeftButton);
    QVERIFY(allShown(bench, {"Cancel Export"}));
    QCOMPARE(questionOf(bench.boxes.seen().at(0)), QString("Are you sure you want to cancel?"));
    QCOMPARE(cancelled.count(), yes ? 1 : 0);
    QCOMPARE(bench.cancelButton->isVisible(), !yes);
    QCOMPARE(bench.status(), QString(yes ? "Status: cancelling export..." : "Status: exporting files..."));
}

void TestMainWindowMessages::progressAfterCancellingKeepsTheText()
{
    WindowBench bench;
    beginExport(*bench.window);
    bench.boxes.answerNext(QMessageBox::Yes);
    bench.cancelButton->click();
    progress(*bench.window, "exporting files...");
    QCOMPARE(bench.status(), QString("Status: cancelling export..."));
    endExport(*bench.window, 1);
    progress(*bench.window, "export cancelled");
    QCOMPARE(bench.status(), QString("Status: export cancelled"));
}

void TestMainWindowMessages::cancellingAnExportThatHasEndedDoesNothing()
{
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    beginExport(*bench.window);
    bench.boxes.answerNext(QMessageBox::Yes, [&bench] { endExport(*bench.window, 1); });
    bench.cancelButton->click();
    QCOMPARE(cancelled.count(), 0);
    QCOMPARE(bench.status(), QString("Status: export cancelled"));
    beginExport(*bench.window);
    progress(*bench.window, "exporting files...");
    QCOMPARE(bench.status(), QString("Status: exporting files..."));
}

void TestMainWindowMessages::quittingDuringAnExportIsAskedFor_data()
{
    QTest::addColumn<bool>("byMenu");
    QTest::addColumn<bool>("yes");
    QTest::newRow("by menu, yes") << true << true;
    QTest::newRow("by menu, no") << true << false;
    QTest::newRow("by the close box, yes") << false << true;
    QTest::newRow("by the close box, no") << false << false;
}

void TestMainWindowMessages::quittingDuringAnExportIsAskedFor()
{
    QFETCH(bool, byMenu);
    QFETCH(bool, yes);
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    beginExport(*bench.window);
    bench.boxes.answerNext(yes ? QMessageBox::Yes : QMessageBox::No);
    if (byMenu)
        bench.child<QAction>("exitAction")->trigger();
    else
        QVERIFY(!bench.window->close());
    QVERIFY(allShown(bench, {"Quit Application"}));
    QCOMPARE(questionOf(bench.boxes.seen().at(0)),
             QString("Are you sure you want to quit\n(and cancel the export process)?"));
    QVERIFY(bench.window->isVisible());
    QCOMPARE(cancelled.count(), yes ? 1 : 0);
    QCOMPARE(bench.cancelButton->isVisible(), !yes);
    endExport(*bench.window, 1);
    QCOMPARE(bench.window->isVisible(), !yes);
}

void TestMainWindowMessages::aConfirmedQuitClosesWhateverTheResult_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("all exported meanwhile") << 0;
    QTest::newRow("cancelled") << 1;
    QTest::newRow("some failed") << 2;
    QTest::newRow("unknown") << 3;
}

void TestMainWindowMessages::aConfirmedQuitClosesWhateverTheResult()
{
    QFETCH(int, result);
    WindowBench bench;
    bench.child<QAction>("readAudioTCAction")->trigger();
    beginExport(*bench.window);
    bench.boxes.answerNext(QMessageBox::Yes);
    bench.child<QAction>("exitAction")->trigger();
    QVERIFY(bench.window->isVisible());
    if (result == 0 || result == 2)
        bench.boxes.answerNext(QMessageBox::Ok);
    endExport(*bench.window, result);
    QVERIFY(bench.boxes.allGiven());
    QVERIFY(!bench.window->isVisible());
    QVERIFY(!topLevel("audioTCWindow")->isVisible());
}

void TestMainWindowMessages::quittingAnExportThatHasEndedQuitsAtOnce_data()
{
    QTest::addColumn<bool>("byMenu");
    QTest::newRow("by menu") << true;
    QTest::newRow("by the close box") << false;
}

void TestMainWindowMessages::quittingAnExportThatHasEndedQuitsAtOnce()
{
    QFETCH(bool, byMenu);
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    beginExport(*bench.window);
    bench.boxes.answerNext(QMessageBox::Yes, [&bench] { endExport(*bench.window, 1); });
    if (byMenu)
        bench.child<QAction>("exitAction")->trigger();
    else
        QVERIFY(bench.window->close());
    QVERIFY(!bench.window->isVisible());
    QCOMPARE(cancelled.count(), 0);
}

void TestMainWindowMessages::theEndOfASessionAsksNothing()
{
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    beginExport(*bench.window);
    bench.window->quitWithoutAsking();
    QCOMPARE(cancelled.count(), 1);
    QVERIFY(bench.window->isVisible());
    QVERIFY2(!bench.window->close(), "closed by the session again, without a question");
    endExport(*bench.window, 0);
    QVERIFY(allShown(bench, {}));
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowMessages::theEndOfASessionWithoutExportClosesAtOnce()
{
    WindowBench bench;
    bench.window->quitWithoutAsking();
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowMessages::aWholeExportIsDone()
{
    WindowBench bench;
    bench.addFile("a.mov");
    bench.addFile("b.mov");
    QVERIFY(bench.import());
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.allGiven(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status:"), patience);
    QCOMPARE(bench.boxes.seen().at(0).text, QString("Ostrel did the job!"));
    QCOMPARE(bench.exportedFiles().size(), 2);
}

void TestMainWindowMessages::anExportWithFailuresNamesThem()
{
    WindowBench bench;
    bench.addFile("a.mov");
    faketools::setPlan(bench.addFile("b.mov"), {{"export", QJsonObject{{"exitCode", 1}}}});
    QVERIFY(bench.import());
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.allGiven(), patience);
    QCOMPARE(bench.boxes.seen().at(0).text,
             QString("Export finished.\nErrors occured with the folliwing files:\nb.mov"));
}

void TestMainWindowMessages::anExportThatIsEndedLeavesNothing_data()
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

void TestMainWindowMessages::anExportThatIsEndedLeavesNothing()
{
    QFETCH(Ending, end);
    QFETCH(bool, windowStays);
    WindowBench bench;
    QVERIFY(bench.startHangingExport());
    end(bench);
    QTRY_VERIFY_WITH_TIMEOUT(!bench.child<QPushButton>("cancelButton")->isVisible(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: export cancelled"), patience);
    QCOMPARE(bench.exportedFiles(), QStringList());
    QVERIFY(!faketools::isAlive(bench.hangingTool()));
    QCOMPARE(bench.window->isVisible(), windowStays);
}

void TestMainWindowMessages::theEndOfASessionIsWaitedForUntilNothingIsLeft()
{
    WindowBench bench;
    QVERIFY(bench.startHangingExport());
    bench.window->onSessionEnd();
    QCOMPARE(bench.exportedFiles(), QStringList());
    QVERIFY(!faketools::isAlive(bench.hangingTool()));
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowMessages::theEndOfASessionClosesWhatStandsOpen_data()
{
    QTest::addColumn<Ending>("open");
    QTest::newRow("the question about cancelling")
        << Ending([](WindowBench &bench) { bench.cancelButton->click(); });
    QTest::newRow("the question about quitting")
        << Ending([](WindowBench &bench) { bench.child<QAction>("exitAction")->trigger(); });
    QTest::newRow("the result of the export")
        << Ending([](WindowBench &bench) { endExport(*bench.window, 0); });
    QTest::newRow("the About box") << Ending(
        [](WindowBench &bench) { bench.child<QAction>("aboutAction")->trigger(); });
}

void TestMainWindowMessages::theEndOfASessionClosesWhatStandsOpen()
{
    QFETCH(Ending, open);
    WindowBench bench;
    beginExport(*bench.window);
    bool stoodOpen = false;
    QTimer::singleShot(0, bench.window.get(), [&] {
        stoodOpen = QApplication::activeModalWidget();
        bench.window->quitWithoutAsking();
    });
    open(bench);
    QVERIFY(stoodOpen);
    QVERIFY(!QApplication::activeModalWidget());
    endExport(*bench.window, 1);
    QVERIFY(!bench.window->isVisible());
}

void TestMainWindowMessages::missingToolsAreNamedWithoutWaiting()
{
    const WindowBench bench;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    bench.window->reportMissingTools();
    qputenv("PATH", path);
    const auto *box = bench.window->findChild<QMessageBox *>();
    QVERIFY(box && box->isVisible());
    QVERIFY(!box->isModal());
    QVERIFY(box->text().contains("LTCReader.exe"));
    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    QTRY_VERIFY(!bench.window->findChild<QMessageBox *>());
    bench.window->reportMissingTools();
    QVERIFY(!bench.window->findChild<QMessageBox *>());
}

QTEST_MAIN(TestMainWindowMessages)
#include "tst_mainwindowmessages.moc"

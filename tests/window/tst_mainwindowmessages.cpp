// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace
{

void progress(MainWindow &window, const QString &text)
{
    QMetaObject::invokeMethod(&window, "statusProgressUpdate", Q_ARG(int, 1), Q_ARG(int, 15),
                              Q_ARG(QString, text));
}

} // namespace

class TestMainWindowMessages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theAboutBoxTellsVersionAndWebPage();
    void aNewerVersionIsAnnounced_data();
    void aNewerVersionIsAnnounced();
    void anExportThatStartsOffersToCancel();
    void theExportDialogStaysEnabledDuringAnExport();
    void aFinishedExportIsTold();
    void failedFilesAreTold_data();
    void failedFilesAreTold();
    void aCancelledExportNeedsNoMessage();
    void anUnknownResultChangesNoText();
    void cancellingIsAskedFor_data();
    void cancellingIsAskedFor();
    void progressAfterCancellingKeepsTheText();
    void cancellingAnExportThatHasEndedDoesNothing();
    void onlyAnEndDuringTheQuestionTakesTheAnswerBack();
    void aWholeExportIsDone();
    void anExportWithFailuresNamesThem();
    void missingToolsAreNamedWithoutWaiting();
};

void TestMainWindowMessages::initTestCase()
{
    registerRecordTypes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    qApp->setStyleSheet("QMessageBox { messagebox-text-interaction-flags: 5; }");
}

void TestMainWindowMessages::theAboutBoxTellsVersionAndWebPage()
{
    WindowBench bench;
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.child<QAction>("aboutAction")->trigger();
    QVERIFY(bench.boxes.answered({"About"}));
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
        QVERIFY(bench.boxes.answered({}));
        return;
    }
    QVERIFY(bench.boxes.answered({"New Version Available"}));
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
    bench.beginExport();
    QVERIFY(bench.cancelButton->isVisible());
    QVERIFY(!bench.child<QAction>("exportAction")->isEnabled());
    QVERIFY(!bench.child<QAction>("exportAllAction")->isEnabled());
    bench.endExport(1);
    QVERIFY(!bench.cancelButton->isVisible());
    QVERIFY(bench.child<QAction>("exportAction")->isEnabled());
    QVERIFY(bench.child<QAction>("exportAllAction")->isEnabled());
}

void TestMainWindowMessages::theExportDialogStaysEnabledDuringAnExport()
{
    WindowBench bench;
    bench.addFile("a.mov");
    QVERIFY(bench.import());
    const QWidget *dialog = topLevel("exportWindow");
    const auto *exportAll = bench.child<QAction>("exportAllAction");
    const auto *exportSelected = bench.child<QAction>("exportAction");
    bench.boxes.answerNext(QMessageBox::Ok, [&] {
        QVERIFY(!exportAll->isEnabled());
        QVERIFY(dialog->isEnabled());
    });
    bench.startExport();
    QVERIFY2(!exportAll->isEnabled() && !exportSelected->isEnabled(), "from the request on");
    QVERIFY(dialog->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(exportAll->isEnabled() && exportSelected->isEnabled(), longWait);
    QVERIFY(bench.boxes.answered({"Export Result"}));
}

void TestMainWindowMessages::aFinishedExportIsTold()
{
    WindowBench bench;
    bench.beginExport();
    progress(*bench.window, "ready");
    bench.boxes.answerNext(QMessageBox::Ok, [&bench] {
        QCOMPARE(bench.status(), QString("Status: ready"));
        QVERIFY2(!bench.child<QAction>("exportAction")->isEnabled(), "until the message has been answered");
    });
    bench.endExport(0);
    QVERIFY(bench.boxes.answered({"Export Result"}));
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
    bench.beginExport();
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.endExport(2, names);
    QVERIFY(bench.boxes.answered({"Export Result"}));
    QTEST(bench.boxes.seen().at(0).text, "text");
    QCOMPARE(bench.boxes.seen().at(0).icon, QString("information"));
    QCOMPARE(bench.boxes.seen().at(0).format, Qt::PlainText);
    QCOMPARE(bench.status(), QString("Status:"));
}

void TestMainWindowMessages::aCancelledExportNeedsNoMessage()
{
    WindowBench bench;
    bench.beginExport();
    bench.endExport(1);
    QVERIFY(bench.boxes.answered({}));
    QCOMPARE(bench.status(), QString("Status: export cancelled"));
    QCOMPARE(bench.progressBar->value(), 0);
}

void TestMainWindowMessages::anUnknownResultChangesNoText()
{
    WindowBench bench;
    bench.beginExport();
    progress(*bench.window, "exporting files...");
    bench.endExport(3);
    QVERIFY(bench.boxes.answered({}));
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
    bench.beginExport();
    progress(*bench.window, "exporting files...");
    bench.boxes.answerNext(yes ? QMessageBox::Yes : QMessageBox::No);
    QTest::mouseClick(bench.cancelButton, Qt::LeftButton);
    QVERIFY(bench.boxes.answered({"Cancel Export"}));
    QCOMPARE(questionOf(bench.boxes.seen().at(0)), QString("Are you sure you want to cancel?"));
    QCOMPARE(cancelled.count(), yes ? 1 : 0);
    QCOMPARE(bench.cancelButton->isVisible(), !yes);
    QCOMPARE(bench.status(), QString(yes ? "Status: cancelling export..." : "Status: exporting files..."));
}

void TestMainWindowMessages::progressAfterCancellingKeepsTheText()
{
    WindowBench bench;
    bench.beginExport();
    bench.boxes.answerNext(QMessageBox::Yes);
    bench.cancelButton->click();
    progress(*bench.window, "exporting files...");
    QCOMPARE(bench.status(), QString("Status: cancelling export..."));
    bench.endExport(1);
    progress(*bench.window, "export cancelled");
    QCOMPARE(bench.status(), QString("Status: export cancelled"));
}

void TestMainWindowMessages::cancellingAnExportThatHasEndedDoesNothing()
{
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    bench.beginExport();
    bench.boxes.answerNext(QMessageBox::Yes, [&bench] { bench.endExport(1); });
    bench.cancelButton->click();
    QCOMPARE(cancelled.count(), 0);
    QCOMPARE(bench.status(), QString("Status: export cancelled"));
    bench.beginExport();
    progress(*bench.window, "exporting files...");
    QCOMPARE(bench.status(), QString("Status: exporting files..."));
}

void TestMainWindowMessages::onlyAnEndDuringTheQuestionTakesTheAnswerBack()
{
    WindowBench bench;
    QSignalSpy cancelled(bench.window.get(), &MainWindow::cancelExport);
    bench.boxes.answerNext(QMessageBox::Yes);
    bench.cancelButton->click();
    QVERIFY(bench.boxes.answered({"Cancel Export"}));
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(bench.status(), QString("Status: cancelling export..."));
}

void TestMainWindowMessages::aWholeExportIsDone()
{
    WindowBench bench;
    bench.addFile("a.mov");
    bench.addFile("b.mov");
    QVERIFY(bench.import());
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.allGiven(), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status:"), longWait);
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
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.allGiven(), longWait);
    QCOMPARE(bench.boxes.seen().at(0).text,
             QString("Export finished.\nErrors occured with the folliwing files:\nb.mov"));
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

// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/windowfixture.h"

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
    WindowFixture fixture;
    fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.child<QAction>("aboutAction")->trigger();
    QVERIFY(fixture.boxes.answered({"About"}));
    const auto &box = fixture.boxes.seen().at(0);
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
    WindowFixture fixture;
    if (announced)
        fixture.boxes.answerNext(QMessageBox::Ok);
    QMetaObject::invokeMethod(fixture.window.get(), "versionInfoCheck", Q_ARG(uint, majorVersion),
                              Q_ARG(uint, minorVersion), Q_ARG(QString, description),
                              Q_ARG(QUrl, QUrl("http://host/a.zip")));
    if (!announced) {
        QVERIFY(fixture.boxes.answered({}));
        return;
    }
    QVERIFY(fixture.boxes.answered({"New Version Available"}));
    const auto &box = fixture.boxes.seen().at(0);
    QCOMPARE(box.format, Qt::RichText);
    QCOMPARE(box.icon, QString());
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(box.text.contains("<a href='http://host/a.zip'>http://host/a.zip</a></p>"));
    QCOMPARE(box.text.contains("Details:"), !description.isEmpty());
    QCOMPARE(box.interaction, Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse);
}

void TestMainWindowMessages::anExportThatStartsOffersToCancel()
{
    const WindowFixture fixture;
    fixture.beginExport();
    QVERIFY(fixture.cancelButton->isVisible());
    QVERIFY(!fixture.child<QAction>("exportAction")->isEnabled());
    QVERIFY(!fixture.child<QAction>("exportAllAction")->isEnabled());
    fixture.endExport(1);
    QVERIFY(!fixture.cancelButton->isVisible());
    QVERIFY(fixture.child<QAction>("exportAction")->isEnabled());
    QVERIFY(fixture.child<QAction>("exportAllAction")->isEnabled());
}

void TestMainWindowMessages::theExportDialogStaysEnabledDuringAnExport()
{
    WindowFixture fixture;
    fixture.addFile("a.mov");
    QVERIFY(fixture.import());
    const QWidget *dialog = topLevel("exportWindow");
    const auto *exportAll = fixture.child<QAction>("exportAllAction");
    const auto *exportSelected = fixture.child<QAction>("exportAction");
    fixture.boxes.answerNext(QMessageBox::Ok, [&] {
        QVERIFY(!exportAll->isEnabled());
        QVERIFY(dialog->isEnabled());
    });
    fixture.startExport();
    QVERIFY2(!exportAll->isEnabled() && !exportSelected->isEnabled(), "from the request on");
    QVERIFY(dialog->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(exportAll->isEnabled() && exportSelected->isEnabled(), longWait);
    QVERIFY(fixture.boxes.answered({"Export Result"}));
}

void TestMainWindowMessages::aFinishedExportIsTold()
{
    WindowFixture fixture;
    fixture.beginExport();
    progress(*fixture.window, "ready");
    fixture.boxes.answerNext(QMessageBox::Ok, [&fixture] {
        QCOMPARE(fixture.status(), QString("Status: ready"));
        QVERIFY2(!fixture.child<QAction>("exportAction")->isEnabled(), "until the message has been answered");
    });
    fixture.endExport(0);
    QVERIFY(fixture.boxes.answered({"Export Result"}));
    const auto &box = fixture.boxes.seen().at(0);
    QCOMPARE(box.text, QString("Ostrel did the job!"));
    QCOMPARE(box.icon, QString("information"));
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(fixture.status(), QString("Status:"));
    QCOMPARE(fixture.progressBar->value(), 0);
    QVERIFY(!fixture.cancelButton->isVisible());
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
    WindowFixture fixture;
    fixture.beginExport();
    fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.endExport(2, names);
    QVERIFY(fixture.boxes.answered({"Export Result"}));
    QTEST(fixture.boxes.seen().at(0).text, "text");
    QCOMPARE(fixture.boxes.seen().at(0).icon, QString("information"));
    QCOMPARE(fixture.boxes.seen().at(0).format, Qt::PlainText);
    QCOMPARE(fixture.status(), QString("Status:"));
}

void TestMainWindowMessages::aCancelledExportNeedsNoMessage()
{
    WindowFixture fixture;
    fixture.beginExport();
    fixture.endExport(1);
    QVERIFY(fixture.boxes.answered({}));
    QCOMPARE(fixture.status(), QString("Status: export cancelled"));
    QCOMPARE(fixture.progressBar->value(), 0);
}

void TestMainWindowMessages::anUnknownResultChangesNoText()
{
    WindowFixture fixture;
    fixture.beginExport();
    progress(*fixture.window, "exporting files...");
    fixture.endExport(3);
    QVERIFY(fixture.boxes.answered({}));
    QCOMPARE(fixture.status(), QString("Status: exporting files..."));
    QVERIFY(!fixture.cancelButton->isVisible());
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
    WindowFixture fixture;
    QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    fixture.beginExport();
    progress(*fixture.window, "exporting files...");
    fixture.boxes.answerNext(yes ? QMessageBox::Yes : QMessageBox::No);
    QTest::mouseClick(fixture.cancelButton, Qt::LeftButton);
    QVERIFY(fixture.boxes.answered({"Cancel Export"}));
    QCOMPARE(questionOf(fixture.boxes.seen().at(0)), QString("Are you sure you want to cancel?"));
    QCOMPARE(cancelled.count(), yes ? 1 : 0);
    QCOMPARE(fixture.cancelButton->isVisible(), !yes);
    QCOMPARE(fixture.status(), QString(yes ? "Status: cancelling export..." : "Status: exporting files..."));
}

void TestMainWindowMessages::progressAfterCancellingKeepsTheText()
{
    WindowFixture fixture;
    fixture.beginExport();
    fixture.boxes.answerNext(QMessageBox::Yes);
    fixture.cancelButton->click();
    progress(*fixture.window, "exporting files...");
    QCOMPARE(fixture.status(), QString("Status: cancelling export..."));
    fixture.endExport(1);
    progress(*fixture.window, "export cancelled");
    QCOMPARE(fixture.status(), QString("Status: export cancelled"));
}

void TestMainWindowMessages::cancellingAnExportThatHasEndedDoesNothing()
{
    WindowFixture fixture;
    QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    fixture.beginExport();
    fixture.boxes.answerNext(QMessageBox::Yes, [&fixture] { fixture.endExport(1); });
    fixture.cancelButton->click();
    QCOMPARE(cancelled.count(), 0);
    QCOMPARE(fixture.status(), QString("Status: export cancelled"));
    fixture.beginExport();
    progress(*fixture.window, "exporting files...");
    QCOMPARE(fixture.status(), QString("Status: exporting files..."));
}

void TestMainWindowMessages::onlyAnEndDuringTheQuestionTakesTheAnswerBack()
{
    WindowFixture fixture;
    QSignalSpy cancelled(fixture.window.get(), &MainWindow::cancelExport);
    fixture.boxes.answerNext(QMessageBox::Yes);
    fixture.cancelButton->click();
    QVERIFY(fixture.boxes.answered({"Cancel Export"}));
    QCOMPARE(cancelled.count(), 1);
    QCOMPARE(fixture.status(), QString("Status: cancelling export..."));
}

void TestMainWindowMessages::aWholeExportIsDone()
{
    WindowFixture fixture;
    fixture.addFile("a.mov");
    fixture.addFile("b.mov");
    QVERIFY(fixture.import());
    fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(fixture.boxes.allGiven(), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status:"), longWait);
    QCOMPARE(fixture.boxes.seen().at(0).text, QString("Ostrel did the job!"));
    QCOMPARE(fixture.exportedFiles().size(), 2);
}

void TestMainWindowMessages::anExportWithFailuresNamesThem()
{
    WindowFixture fixture;
    fixture.addFile("a.mov");
    faketools::setPlan(fixture.addFile("b.mov"), {{"export", QJsonObject{{"exitCode", 1}}}});
    QVERIFY(fixture.import());
    fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(fixture.boxes.allGiven(), longWait);
    QCOMPARE(fixture.boxes.seen().at(0).text,
             QString("Export finished.\nErrors occured with the folliwing files:\nb.mov"));
}

void TestMainWindowMessages::missingToolsAreNamedWithoutWaiting()
{
    const WindowFixture fixture;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    fixture.window->reportMissingTools();
    qputenv("PATH", path);
    const auto *box = fixture.window->findChild<QMessageBox *>();
    QVERIFY(box && box->isVisible());
    QVERIFY(!box->isModal());
    QVERIFY(box->text().contains("LTCReader.exe"));
    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    QTRY_VERIFY(!fixture.window->findChild<QMessageBox *>());
    fixture.window->reportMissingTools();
    QVERIFY(!fixture.window->findChild<QMessageBox *>());
}

QTEST_MAIN(TestMainWindowMessages)
#include "tst_mainwindowmessages.moc"

// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "filelist/filelist.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/windowfixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QJsonArray>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>

namespace
{

constexpr int audioColumn = 3;

template <typename... Arguments>
void call(MainWindow &window, const char *slot, Arguments... arguments)
{
    if (!QMetaObject::invokeMethod(&window, slot, Qt::DirectConnection, arguments...))
        qFatal("there is no slot %s", slot);
}

void progress(MainWindow &window, int current, int all, const QString &text)
{
    call(window, "statusProgressUpdate", Q_ARG(int, current), Q_ARG(int, all), Q_ARG(QString, text));
}

bool showsPointer(const WindowFixture &fixture, Qt::CursorShape shape)
{
    return fixture.fileList->cursor().shape() == shape &&
           fixture.fileList->viewport()->cursor().shape() == shape;
}

QJsonObject plan(const char *job, const QJsonObject &part)
{
    return {{job, part}};
}

void readAllAgain(const WindowFixture &fixture)
{
    fixture.child<QAction>("readAudioTCAction")->trigger();
    const QWidget *dialog = topLevel("audioTCWindow");
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void progressIsShown();
    void theProgressNeverGoesBackwards();
    void aProgressOfNothingStandsStill();
    void theEndsOfImportAndReadingAreShown();
    void theDialogsAreShownOrBroughtToTheFront();
    void theContextMenuOffersExportAndReading();
    void deleteClearsAndIsPassedOnWithoutSelection();
    void deleteWaitsForTheEndOfAReading();
    void aFolderIsImportedAndItsStreamsShown();
    void aDropChangesNeitherLabelNorBar();
    void aSilentEndChangesNeitherLabelNorBar();
    void thePointerIsBusyDuringAnImport_data();
    void thePointerIsBusyDuringAnImport();
    void thePointerIsBusyDuringAReading_data();
    void thePointerIsBusyDuringAReading();
    void thePointerIsBusyUntilTheLastOfSeveralEnds();
    void aDropOfNothingUsableEndsQuietly();
    void rowsCanBeDeletedAfterADropOfNothingUsable();
    void rowsCannotBeDeletedDuringAnImport();
    void theReadingDialogReachesTheReader();
};

void TestMainWindow::initTestCase()
{
    registerRecordTypes();
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

void TestMainWindow::progressIsShown()
{
    const WindowFixture fixture;
    progress(*fixture.window, 4, 30, "importing files...");
    QCOMPARE(fixture.progressBar->minimum(), 0);
    QCOMPARE(fixture.progressBar->maximum(), 30);
    QCOMPARE(fixture.progressBar->value(), 4);
    QCOMPARE(fixture.status(), QString("Status: importing files..."));
}

void TestMainWindow::theProgressNeverGoesBackwards()
{
    WindowFixture fixture;
    for (const char *name : {"a.mov", "b.mov", "c.wav"})
        fixture.addFile(name);
    QVector<double> shown; // parts of the whole, since the operation began
    connect(fixture.progressBar, &QProgressBar::valueChanged, fixture.window.get(),
            [&fixture, &shown](int value) {
                shown += static_cast<double>(value) / fixture.progressBar->maximum();
            });
    const auto onlyGrew = [&shown] { // until it is set back at the end
        return shown.size() > 2 && shown.takeLast() == 0.0 && std::is_sorted(shown.cbegin(), shown.cend());
    };
    QVERIFY(fixture.import());
    QVERIFY(onlyGrew());
    shown.clear();
    fixture.boxes.answerNext(QMessageBox::Ok);
    fixture.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(fixture.boxes.allGiven(), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status:"), longWait);
    QVERIFY(onlyGrew());
}

void TestMainWindow::aProgressOfNothingStandsStill()
{
    const WindowFixture fixture;
    progress(*fixture.window, 0, 0, "cancelling export...");
    QVERIFY(fixture.progressBar->maximum() > 0);
    QCOMPARE(fixture.progressBar->value(), 0);
}

void TestMainWindow::theEndsOfImportAndReadingAreShown()
{
    const WindowFixture fixture;
    progress(*fixture.window, 4, 30, "importing files...");
    call(*fixture.window, "importReady");
    QCOMPARE(fixture.progressBar->value(), 0);
    QCOMPARE(fixture.status(), QString("Status: import ready"));
    progress(*fixture.window, 4, 30, "reading audio TC...");
    call(*fixture.window, "readingFinished");
    QCOMPARE(fixture.progressBar->value(), 0);
    QCOMPARE(fixture.status(), QString("Status: read finished"));
}

void TestMainWindow::theDialogsAreShownOrBroughtToTheFront()
{
    const WindowFixture fixture;
    QWidget *exportWindow = topLevel("exportWindow");
    QWidget *audioTCWindow = topLevel("audioTCWindow");
    fixture.child<QAction>("exportAllAction")->trigger();
    QVERIFY(exportWindow->isVisible());
    QCOMPARE(exportWindow->windowTitle(), QString("Export all files"));
    QVERIFY(QTest::qWaitForWindowActive(exportWindow, longWait));
    fixture.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get(), longWait));
    fixture.child<QAction>("exportAction")->trigger();
    QCOMPARE(exportWindow->windowTitle(), QString("Export selected files"));
    QVERIFY(QTest::qWaitForWindowActive(exportWindow, longWait));
    fixture.child<QAction>("readAudioTCAction")->trigger();
    QVERIFY(audioTCWindow->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(audioTCWindow, longWait));
}

void TestMainWindow::theContextMenuOffersExportAndReading()
{
    const WindowFixture fixture;
    QList<QAction *> offered;
    QTimer::singleShot(0, fixture.window.get(), [&offered] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            offered = menu->actions();
            menu->close();
        }
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(10, 100),
                            fixture.window->mapToGlobal(QPoint(10, 100)));
    QCoreApplication::sendEvent(fixture.window.get(), &event);
    QCOMPARE(offered, (QList<QAction *>{fixture.child<QAction>("exportAction"),
                                        fixture.child<QAction>("readAudioTCAction")}));
}

void TestMainWindow::deleteClearsAndIsPassedOnWithoutSelection()
{
    const WindowFixture fixture;
    QSignalSpy passedOn(fixture.window.get(), &MainWindow::deleteSelectedRowsSignal);
    fixture.streamInfoList->addItem("   0: video (h264)");
    fixture.statusLabel->setText("Status: import ready");
    QTest::keyClick(fixture.window.get(), Qt::Key_Delete);
    QCOMPARE(fixture.streamInfoList->count(), 0);
    QCOMPARE(fixture.status(), QString("Status: "));
    QCOMPARE(passedOn.count(), 1);
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(passedOn.count(), 2);
    QTest::keyClick(fixture.fileList, Qt::Key_X);
    QCOMPARE(passedOn.count(), 2);
}

void TestMainWindow::deleteWaitsForTheEndOfAReading()
{
    WindowFixture fixture;
    const QString file = fixture.addFile("a.wav");
    QVERIFY(fixture.import());
    faketools::setPlan(file, {{"read", QJsonObject{{"waitFor", "gate"}}}});
    QWidget *dialog = topLevel("audioTCWindow");
    fixture.child<QAction>("readAudioTCAction")->trigger();
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentIndex(1);
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    fixture.fileList->selectAll();
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(fixture.fileList->rowCount(), 1);
    QCOMPARE(fixture.status(), QString("Status: "));
    faketools::openGate(fixture.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: read finished"), longWait);
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(fixture.fileList->rowCount(), 0);
}

void TestMainWindow::aFolderIsImportedAndItsStreamsShown()
{
    WindowFixture fixture;
    fixture.addFile("a.mov");
    fixture.addFile("b.wav");
    QVERIFY(fixture.import());
    QStringList names = fixture.column(0);
    names.sort();
    QCOMPARE(names, (QStringList{"a.mov", "b.wav"}));
    const QStringList audioCells = fixture.column(audioColumn);
    for (const QString &cell : audioCells)
        QCOMPARE(cell, QString("10:00:00:00@25.00 on ch. 1"));
    QCOMPARE(fixture.progressBar->value(), 0);
    const int row = static_cast<int>(fixture.column(0).indexOf("a.mov"));
    QTest::mouseClick(fixture.fileList->viewport(), Qt::LeftButton, {},
                      fixture.fileList->visualItemRect(fixture.fileList->item(row, 0)).center());
    QCOMPARE(fixture.streamLines().value(0), QString(" Streams:"));
    QVERIFY(fixture.streamLines().size() > 3);
    QTest::keyClick(fixture.fileList, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(QGuiApplication::clipboard()->text().contains("a.mov\t00:00:10\t"));
}

void TestMainWindow::aDropChangesNeitherLabelNorBar()
{
    WindowFixture fixture;
    fixture.addFile("a.wav");
    QVERIFY(fixture.import());
    const QString file = fixture.addFile("b.wav");
    faketools::setPlan(file, plan("probe", {{"waitFor", "gate"}}));
    progress(*fixture.window, 2, 7, "as before");
    fixture.drop({file});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(file, "probe").size(), 1, longWait);
    QCOMPARE(fixture.status(), QString("Status: as before"));
    QCOMPARE(fixture.progressBar->maximum(), 7);
    QCOMPARE(fixture.progressBar->value(), 2);
    faketools::openGate(fixture.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: import ready"), longWait);
}

void TestMainWindow::aSilentEndChangesNeitherLabelNorBar()
{
    WindowFixture fixture;
    const QString silent = fixture.addFile("silent.mov");
    const QString good = fixture.addFile("good.mov");
    faketools::setPlan(silent, plan("probe", {{"json", QJsonObject()}}));
    faketools::setPlan(good, plan("read", {{"waitFor", "gate"}}));
    fixture.drop({silent, good});
    QTRY_COMPARE_WITH_TIMEOUT(fixture.column(audioColumn).value(0), QString("couldn't read file data"),
                              longWait);
    faketools::openGate(fixture.media + "/gate");
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
    QCOMPARE(fixture.column(audioColumn).value(1), QString("10:00:00:00@25.00 on ch. 1"));
    QCOMPARE(fixture.status(), QString("Status: reading audio TC..."));
    QCOMPARE(fixture.progressBar->value(), 4);
    QCOMPARE(fixture.progressBar->maximum(), 6);
    fixture.fileList->selectAll();
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(fixture.fileList->rowCount(), 0);
}

void TestMainWindow::thePointerIsBusyDuringAnImport_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QJsonObject>("plan");
    QTest::addColumn<QString>("status");
    QTest::newRow("import ready") << "a.wav" << QJsonObject() << "Status: import ready";
    QTest::newRow("the probe fails") << "a.wav" << plan("probe", {{"exitCode", 1}}) << "Status: import ready";
    QTest::newRow("the extraction fails")
        << "a.wav" << plan("extract", {{"exitCode", 1}}) << "Status: import ready";
    QTest::newRow("silent, the probe says nothing")
        << "a.wav" << plan("probe", {{"json", QJsonObject()}}) << "Status: importing files...";
    QTest::newRow("silent, nothing was extracted")
        << "a.wav" << plan("extract", {{"actions", QJsonArray()}}) << "Status: prepare files for reading...";
    QTest::newRow("silent, nothing usable was dropped") << "notes.txt" << QJsonObject() << "Status:";
}

void TestMainWindow::thePointerIsBusyDuringAnImport()
{
    QFETCH(QString, name);
    QFETCH(QJsonObject, plan);
    QFETCH(QString, status);
    WindowFixture fixture;
    faketools::setPlan(fixture.addFile(name), plan);
    QVERIFY(showsPointer(fixture, Qt::ArrowCursor));
    fixture.dropFolder();
    QVERIFY2(showsPointer(fixture, Qt::BusyCursor), "from the drop on");
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
    QCOMPARE(fixture.status(), status);
    QCOMPARE(fixture.window->cursor().shape(), Qt::ArrowCursor);
}

void TestMainWindow::thePointerIsBusyDuringAReading_data()
{
    QTest::addColumn<QJsonObject>("plan");
    QTest::addColumn<QString>("status");
    QTest::newRow("read finished") << QJsonObject() << "Status: read finished";
    QTest::newRow("the extraction fails, which ends it like an import")
        << plan("extract", {{"exitCode", 1}}) << "Status: import ready";
    QTest::newRow("silent, nothing was extracted")
        << plan("extract", {{"actions", QJsonArray()}}) << "Status: prepare files for reading...";
}

void TestMainWindow::thePointerIsBusyDuringAReading()
{
    QFETCH(QJsonObject, plan);
    QFETCH(QString, status);
    WindowFixture fixture;
    readAllAgain(fixture);
    QVERIFY2(showsPointer(fixture, Qt::ArrowCursor), "there is nothing to read");
    const QString file = fixture.addFile("a.wav");
    QVERIFY(fixture.import());
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
    faketools::setPlan(file, plan);
    readAllAgain(fixture);
    QVERIFY(showsPointer(fixture, Qt::BusyCursor));
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
    QCOMPARE(fixture.status(), status);
}

void TestMainWindow::thePointerIsBusyUntilTheLastOfSeveralEnds()
{
    WindowFixture fixture;
    const QString first = fixture.addFile("a.wav");
    const QString second = fixture.addFile("b.wav");
    faketools::setPlan(first, plan("read", {{"waitFor", "first"}}));
    fixture.drop({first});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "read").size(), 1, longWait);
    faketools::setPlan(first, plan("read", {{"waitFor", "second"}}));
    readAllAgain(fixture); // waits for the end of the import
    faketools::openGate(fixture.media + "/first");
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "read").size(), 2, longWait);
    QVERIFY(showsPointer(fixture, Qt::BusyCursor));
    faketools::setPlan(second, plan("probe", {{"waitFor", "third"}}));
    fixture.drop({second}); // waits for the end of the reading
    faketools::openGate(fixture.media + "/second");
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(second, "probe").size(), 1, longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: read finished"), longWait);
    QVERIFY(showsPointer(fixture, Qt::BusyCursor));
    faketools::openGate(fixture.media + "/third");
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: import ready"), longWait);
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
}

void TestMainWindow::aDropOfNothingUsableEndsQuietly()
{
    WindowFixture fixture;
    fixture.addFile("notes.txt");
    fixture.dropFolder();
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
    QCOMPARE(fixture.status(), QString("Status:"));
    QCOMPARE(fixture.fileList->rowCount(), 0);
    fixture.addFile("a.wav");
    QVERIFY(fixture.import());
    fixture.fileList->selectAll();
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(fixture.fileList->rowCount(), 0);
}

void TestMainWindow::rowsCanBeDeletedAfterADropOfNothingUsable()
{
    WindowFixture fixture;
    fixture.addFile("a.wav");
    QVERIFY(fixture.import());
    fixture.drop({fixture.addFile("notes.txt")});
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(fixture, Qt::ArrowCursor), longWait);
    QCOMPARE(fixture.status(), QString("Status: import ready"));
    fixture.fileList->selectAll();
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(fixture.fileList->rowCount(), 0);
}

void TestMainWindow::rowsCannotBeDeletedDuringAnImport()
{
    WindowFixture fixture;
    const QString file = fixture.addFile("a.wav");
    faketools::setPlan(file, {{"read", QJsonObject{{"waitFor", "gate"}}}});
    fixture.dropFolder();
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(file, "read").size(), 1, longWait);
    const QSignalSpy asked(fixture.window.get(), &MainWindow::deleteSelectedRowsSignal);
    fixture.fileList->selectAll();
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
    QCOMPARE(asked.count(), 1); // the table itself refuses
    QCOMPARE(fixture.fileList->rowCount(), 1);
    faketools::openGate(fixture.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: import ready"), longWait);
}

void TestMainWindow::theReadingDialogReachesTheReader()
{
    WindowFixture fixture;
    const QString file = fixture.addFile("a.wav");
    QVERIFY(fixture.import());
    QWidget *dialog = topLevel("audioTCWindow");
    fixture.child<QAction>("readAudioTCAction")->trigger();
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QComboBox *>("algorithmCombo")->setCurrentText("HIGH");
    dialog->findChild<QComboBox *>("channelCombo")->setCurrentText("channel 4");
    dialog->findChild<QComboBox *>("frameRateCombo")->setCurrentText("29.97 FPS");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: read finished"), longWait);
    const auto reads = faketools::calls(file, "read");
    QCOMPARE(reads.size(), 2);
    QCOMPARE(reads.at(0).arguments.size(), 1);
    QCOMPARE(reads.at(1).arguments.mid(1), (QStringList{"-c3", "-f29.97", "-aHIGH"}));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"

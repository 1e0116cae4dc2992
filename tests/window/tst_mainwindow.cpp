// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "filelist/filelist.h"
#include "testkit/faketools/faketools.h"
#include "tests/window/windowbench.h"

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

bool showsPointer(const WindowBench &bench, Qt::CursorShape shape)
{
    return bench.fileList->cursor().shape() == shape && bench.fileList->viewport()->cursor().shape() == shape;
}

QJsonObject plan(const char *job, const QJsonObject &part)
{
    return {{job, part}};
}

void readAllAgain(const WindowBench &bench)
{
    bench.child<QAction>("readAudioTCAction")->trigger();
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
    const WindowBench bench;
    progress(*bench.window, 4, 30, "importing files...");
    QCOMPARE(bench.progressBar->minimum(), 0);
    QCOMPARE(bench.progressBar->maximum(), 30);
    QCOMPARE(bench.progressBar->value(), 4);
    QCOMPARE(bench.status(), QString("Status: importing files..."));
}

void TestMainWindow::theProgressNeverGoesBackwards()
{
    WindowBench bench;
    for (const char *name : {"a.mov", "b.mov", "c.wav"})
        bench.addFile(name);
    QVector<double> shown; // parts of the whole, since the operation began
    connect(bench.progressBar, &QProgressBar::valueChanged, bench.window.get(), [&bench, &shown](int value) {
        shown += static_cast<double>(value) / bench.progressBar->maximum();
    });
    const auto onlyGrew = [&shown] { // until it is set back at the end
        return shown.size() > 2 && shown.takeLast() == 0.0 && std::is_sorted(shown.cbegin(), shown.cend());
    };
    QVERIFY(bench.import());
    QVERIFY(onlyGrew());
    shown.clear();
    bench.boxes.answerNext(QMessageBox::Ok);
    bench.startExport();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.allGiven(), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status:"), longWait);
    QVERIFY(onlyGrew());
}

void TestMainWindow::aProgressOfNothingStandsStill()
{
    const WindowBench bench;
    progress(*bench.window, 0, 0, "cancelling export...");
    QVERIFY(bench.progressBar->maximum() > 0);
    QCOMPARE(bench.progressBar->value(), 0);
}

void TestMainWindow::theEndsOfImportAndReadingAreShown()
{
    const WindowBench bench;
    progress(*bench.window, 4, 30, "importing files...");
    call(*bench.window, "importReady");
    QCOMPARE(bench.progressBar->value(), 0);
    QCOMPARE(bench.status(), QString("Status: import ready"));
    progress(*bench.window, 4, 30, "reading audio TC...");
    call(*bench.window, "readingFinished");
    QCOMPARE(bench.progressBar->value(), 0);
    QCOMPARE(bench.status(), QString("Status: read finished"));
}

void TestMainWindow::theDialogsAreShownOrBroughtToTheFront()
{
    const WindowBench bench;
    QWidget *exportWindow = topLevel("exportWindow");
    QWidget *audioTCWindow = topLevel("audioTCWindow");
    bench.child<QAction>("exportAllAction")->trigger();
    QVERIFY(exportWindow->isVisible());
    QCOMPARE(exportWindow->windowTitle(), QString("Export all files"));
    QVERIFY(QTest::qWaitForWindowActive(exportWindow, longWait));
    bench.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(bench.window.get(), longWait));
    bench.child<QAction>("exportAction")->trigger();
    QCOMPARE(exportWindow->windowTitle(), QString("Export selected files"));
    QVERIFY(QTest::qWaitForWindowActive(exportWindow, longWait));
    bench.child<QAction>("readAudioTCAction")->trigger();
    QVERIFY(audioTCWindow->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(audioTCWindow, longWait));
}

void TestMainWindow::theContextMenuOffersExportAndReading()
{
    const WindowBench bench;
    QList<QAction *> offered;
    QTimer::singleShot(0, bench.window.get(), [&offered] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            offered = menu->actions();
            menu->close();
        }
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(10, 100),
                            bench.window->mapToGlobal(QPoint(10, 100)));
    QCoreApplication::sendEvent(bench.window.get(), &event);
    QCOMPARE(offered, (QList<QAction *>{bench.child<QAction>("exportAction"),
                                        bench.child<QAction>("readAudioTCAction")}));
}

void TestMainWindow::deleteClearsAndIsPassedOnWithoutSelection()
{
    const WindowBench bench;
    QSignalSpy passedOn(bench.window.get(), &MainWindow::deleteSelectedRowsSignal);
    bench.streamInfoList->addItem("   0: video (h264)");
    bench.statusLabel->setText("Status: import ready");
    QTest::keyClick(bench.window.get(), Qt::Key_Delete);
    QCOMPARE(bench.streamInfoList->count(), 0);
    QCOMPARE(bench.status(), QString("Status: "));
    QCOMPARE(passedOn.count(), 1);
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(passedOn.count(), 2);
    QTest::keyClick(bench.fileList, Qt::Key_X);
    QCOMPARE(passedOn.count(), 2);
}

void TestMainWindow::deleteWaitsForTheEndOfAReading()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    QVERIFY(bench.import());
    faketools::setPlan(file, {{"read", QJsonObject{{"waitFor", "gate"}}}});
    QWidget *dialog = topLevel("audioTCWindow");
    bench.child<QAction>("readAudioTCAction")->trigger();
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentIndex(1);
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 1);
    QCOMPARE(bench.status(), QString("Status: "));
    faketools::openGate(bench.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: read finished"), longWait);
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestMainWindow::aFolderIsImportedAndItsStreamsShown()
{
    WindowBench bench;
    bench.addFile("a.mov");
    bench.addFile("b.wav");
    QVERIFY(bench.import());
    QStringList names = bench.column(0);
    names.sort();
    QCOMPARE(names, (QStringList{"a.mov", "b.wav"}));
    const QStringList audioCells = bench.column(audioColumn);
    for (const QString &cell : audioCells)
        QCOMPARE(cell, QString("10:00:00:00@25.00 on ch. 1"));
    QCOMPARE(bench.progressBar->value(), 0);
    const int row = static_cast<int>(bench.column(0).indexOf("a.mov"));
    QTest::mouseClick(bench.fileList->viewport(), Qt::LeftButton, {},
                      bench.fileList->visualItemRect(bench.fileList->item(row, 0)).center());
    QCOMPARE(bench.streamLines().value(0), QString(" Streams:"));
    QVERIFY(bench.streamLines().size() > 3);
    QTest::keyClick(bench.fileList, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(QGuiApplication::clipboard()->text().contains("a.mov\t00:00:10\t"));
}

void TestMainWindow::aDropChangesNeitherLabelNorBar()
{
    WindowBench bench;
    bench.addFile("a.wav");
    QVERIFY(bench.import());
    const QString file = bench.addFile("b.wav");
    faketools::setPlan(file, plan("probe", {{"waitFor", "gate"}}));
    progress(*bench.window, 2, 7, "as before");
    bench.drop({file});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(file, "probe").size(), 1, longWait);
    QCOMPARE(bench.status(), QString("Status: as before"));
    QCOMPARE(bench.progressBar->maximum(), 7);
    QCOMPARE(bench.progressBar->value(), 2);
    faketools::openGate(bench.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), longWait);
}

void TestMainWindow::aSilentEndChangesNeitherLabelNorBar()
{
    WindowBench bench;
    const QString silent = bench.addFile("silent.mov");
    const QString good = bench.addFile("good.mov");
    faketools::setPlan(silent, plan("probe", {{"json", QJsonObject()}}));
    faketools::setPlan(good, plan("read", {{"waitFor", "gate"}}));
    bench.drop({silent, good});
    QTRY_COMPARE_WITH_TIMEOUT(bench.column(audioColumn).value(0), QString("couldn't read file data"),
                              longWait);
    faketools::openGate(bench.media + "/gate");
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
    QCOMPARE(bench.column(audioColumn).value(1), QString("10:00:00:00@25.00 on ch. 1"));
    QCOMPARE(bench.status(), QString("Status: reading audio TC..."));
    QCOMPARE(bench.progressBar->value(), 4);
    QCOMPARE(bench.progressBar->maximum(), 6);
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 0);
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
    WindowBench bench;
    faketools::setPlan(bench.addFile(name), plan);
    QVERIFY(showsPointer(bench, Qt::ArrowCursor));
    bench.dropFolder();
    QVERIFY2(showsPointer(bench, Qt::BusyCursor), "from the drop on");
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
    QCOMPARE(bench.status(), status);
    QCOMPARE(bench.window->cursor().shape(), Qt::ArrowCursor);
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
    WindowBench bench;
    readAllAgain(bench);
    QVERIFY2(showsPointer(bench, Qt::ArrowCursor), "there is nothing to read");
    const QString file = bench.addFile("a.wav");
    QVERIFY(bench.import());
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
    faketools::setPlan(file, plan);
    readAllAgain(bench);
    QVERIFY(showsPointer(bench, Qt::BusyCursor));
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
    QCOMPARE(bench.status(), status);
}

void TestMainWindow::thePointerIsBusyUntilTheLastOfSeveralEnds()
{
    WindowBench bench;
    const QString first = bench.addFile("a.wav");
    const QString second = bench.addFile("b.wav");
    faketools::setPlan(first, plan("read", {{"waitFor", "first"}}));
    bench.drop({first});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "read").size(), 1, longWait);
    faketools::setPlan(first, plan("read", {{"waitFor", "second"}}));
    readAllAgain(bench); // waits for the end of the import
    faketools::openGate(bench.media + "/first");
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "read").size(), 2, longWait);
    QVERIFY(showsPointer(bench, Qt::BusyCursor));
    faketools::setPlan(second, plan("probe", {{"waitFor", "third"}}));
    bench.drop({second}); // waits for the end of the reading
    faketools::openGate(bench.media + "/second");
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(second, "probe").size(), 1, longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: read finished"), longWait);
    QVERIFY(showsPointer(bench, Qt::BusyCursor));
    faketools::openGate(bench.media + "/third");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), longWait);
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
}

void TestMainWindow::aDropOfNothingUsableEndsQuietly()
{
    WindowBench bench;
    bench.addFile("notes.txt");
    bench.dropFolder();
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
    QCOMPARE(bench.status(), QString("Status:"));
    QCOMPARE(bench.fileList->rowCount(), 0);
    bench.addFile("a.wav");
    QVERIFY(bench.import());
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestMainWindow::rowsCanBeDeletedAfterADropOfNothingUsable()
{
    WindowBench bench;
    bench.addFile("a.wav");
    QVERIFY(bench.import());
    bench.drop({bench.addFile("notes.txt")});
    QTRY_VERIFY_WITH_TIMEOUT(showsPointer(bench, Qt::ArrowCursor), longWait);
    QCOMPARE(bench.status(), QString("Status: import ready"));
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestMainWindow::rowsCannotBeDeletedDuringAnImport()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    faketools::setPlan(file, {{"read", QJsonObject{{"waitFor", "gate"}}}});
    bench.dropFolder();
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(file, "read").size(), 1, longWait);
    const QSignalSpy asked(bench.window.get(), &MainWindow::deleteSelectedRowsSignal);
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
    QCOMPARE(asked.count(), 1); // the table itself refuses
    QCOMPARE(bench.fileList->rowCount(), 1);
    faketools::openGate(bench.media + "/gate");
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), longWait);
}

void TestMainWindow::theReadingDialogReachesTheReader()
{
    WindowBench bench;
    const QString file = bench.addFile("a.wav");
    QVERIFY(bench.import());
    QWidget *dialog = topLevel("audioTCWindow");
    bench.child<QAction>("readAudioTCAction")->trigger();
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QComboBox *>("algorithmCombo")->setCurrentText("HIGH");
    dialog->findChild<QComboBox *>("channelCombo")->setCurrentText("channel 4");
    dialog->findChild<QComboBox *>("frameRateCombo")->setCurrentText("29.97 FPS");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: read finished"), longWait);
    const auto reads = faketools::calls(file, "read");
    QCOMPARE(reads.size(), 2);
    QCOMPARE(reads.at(0).arguments.size(), 1);
    QCOMPARE(reads.at(1).arguments.mid(1), (QStringList{"-c3", "-f29.97", "-aHIGH"}));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"

// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "tests/window/windowbench.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSemaphore>
#include <QTest>
#include <QThread>

#include <cstdio>
#include <fstream>

// Requests and results that cross between the window and its worker at an awkward moment.

namespace
{

QJsonObject waiting(const char *job, const char *gate)
{
    return {{job, QJsonObject{{"waitFor", gate}}}};
}

bool hasTemporaryFolder()
{
    return !QDir(QDir::tempPath()).entryList({"OstrelSyncTemp*"}, QDir::Dirs).isEmpty();
}

/// Lets the worker end its import, whose last act is to remove the temporary folder, while the window sees
/// nothing of it yet.
bool workerEndsImportUnseen()
{
    QElapsedTimer timer;
    timer.start();
    while (hasTemporaryFolder() && !timer.hasExpired(longWait))
        QThread::msleep(5);
    return !hasTemporaryFolder();
}

void readAllAgain(const WindowBench &bench)
{
    bench.child<QAction>("readAudioTCAction")->trigger();
    const QWidget *dialog = topLevel("audioTCWindow");
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
}

void tryToDeleteAll(const WindowBench &bench)
{
    bench.fileList->selectAll();
    QTest::keyClick(bench.fileList, Qt::Key_Delete);
}

} // namespace

class TestFaultsInWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { registerRecordTypes(); }
    void aDropAtTheEndOfAnImportKeepsItsRows();
    void aDropThatWaitsForAFailedReadingKeepsItsRows();
    void aSecondExportIsNotOfferedWhileTheFirstIsOnItsWay();
    void aNameThatIsNoTextGetsARow();
};

void TestFaultsInWindow::aDropAtTheEndOfAnImportKeepsItsRows()
{
    WindowBench bench;
    const QString first = bench.addFile("a.mov");
    const QString second = bench.addFile("b.mov");
    faketools::setPlan(first, waiting("read", "gate"));
    faketools::setPlan(second, waiting("probe", "gate2"));
    bench.drop({first});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "read").size(), 1, longWait);
    QVERIFY(hasTemporaryFolder());
    faketools::openGate(bench.media + "/gate");
    QVERIFY(workerEndsImportUnseen());
    bench.drop({second}); // before the end of the first import is heard of
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(second, "probe").size(), 1, longWait);

    tryToDeleteAll(bench);
    QCOMPARE(bench.fileList->rowCount(), 2); // the probe's result would find no row, or another file's
    faketools::openGate(bench.media + "/gate2");
    QTRY_VERIFY_WITH_TIMEOUT(bench.column(3).value(1).startsWith("10:00:00:00@"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), longWait);
    tryToDeleteAll(bench);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestFaultsInWindow::aDropThatWaitsForAFailedReadingKeepsItsRows()
{
    WindowBench bench;
    const QString first = bench.addFile("a.mov");
    const QString second = bench.addFile("b.mov");
    bench.drop({first});
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), longWait);
    faketools::setPlan(first, {{"extract", QJsonObject{{"waitFor", "gate"}, {"exitCode", 1}}}});
    faketools::setPlan(second, waiting("probe", "gate2"));
    readAllAgain(bench);
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "extract").size(), 2, longWait);
    bench.drop({second});
    faketools::openGate(bench.media + "/gate"); // the reading fails, and ends like an import
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(second, "probe").size(), 1, longWait);

    tryToDeleteAll(bench);
    QCOMPARE(bench.fileList->rowCount(), 2);
    faketools::openGate(bench.media + "/gate2");
    QTRY_VERIFY_WITH_TIMEOUT(bench.column(3).value(1).startsWith("10:00:00:00@"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(bench.status(), QString("Status: import ready"), longWait);
    tryToDeleteAll(bench);
    QCOMPARE(bench.fileList->rowCount(), 0);
}

void TestFaultsInWindow::aSecondExportIsNotOfferedWhileTheFirstIsOnItsWay()
{
    WindowBench bench;
    bench.addFile("a.mov");
    QVERIFY(bench.import());
    const auto *exportAll = bench.child<QAction>("exportAllAction");
    QSemaphore workerMayGoOn;
    auto *inWorker = new QObject;
    inWorker->moveToThread(bench.child<QThread>("workerThread"));
    connect(bench.child<QThread>("workerThread"), &QThread::finished, inWorker, &QObject::deleteLater);
    QMetaObject::invokeMethod(inWorker, [&workerMayGoOn] { workerMayGoOn.acquire(); });

    bench.startExport();
    const bool isOffered = exportAll->isEnabled();
    workerMayGoOn.release();
    QVERIFY2(!isOffered, "both would write the same files and count as one");
    bench.boxes.answerNext(QMessageBox::Ok);
    QTRY_VERIFY_WITH_TIMEOUT(exportAll->isEnabled(), longWait);
    QCOMPARE(bench.exportedFiles(), QStringList{"a.mov"});
    tryToDeleteAll(bench);
    bench.startExport(); // of nothing, which never starts
    QVERIFY(exportAll->isEnabled());
}

void TestFaultsInWindow::aNameThatIsNoTextGetsARow()
{
    WindowBench bench;
    const QByteArray name = QFile::encodeName(bench.media) + "/Caf\xE9.mov"; // in Latin-1
    QVERIFY(std::ofstream(name.constData()));
    QVERIFY(bench.import());
    QCOMPARE(bench.column(0), QStringList{QString("Caf%1.mov").arg(QChar(QChar::ReplacementCharacter))});
    QCOMPARE(bench.column(3), QStringList{"error while reading file data"});
    QCOMPARE(std::remove(name.constData()), 0); // the toolkit could not
}

QTEST_MAIN(TestFaultsInWindow)
#include "tst_faultsinwindow.moc"

// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/faketools/faketools.h"
#include "testkit/fixtures/windowfixture.h"

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

void readAllAgain(const WindowFixture &fixture)
{
    fixture.child<QAction>("readAudioTCAction")->trigger();
    const QWidget *dialog = topLevel("audioTCWindow");
    dialog->findChild<QComboBox *>("filesCombo")->setCurrentText("all files");
    dialog->findChild<QPushButton *>("readAudioTCButton")->click();
}

void tryToDeleteAll(const WindowFixture &fixture)
{
    fixture.fileList->selectAll();
    QTest::keyClick(fixture.fileList, Qt::Key_Delete);
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
    WindowFixture fixture;
    const QString first = fixture.addFile("a.mov");
    const QString second = fixture.addFile("b.mov");
    faketools::setPlan(first, waiting("read", "gate"));
    faketools::setPlan(second, waiting("probe", "gate2"));
    fixture.drop({first});
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "read").size(), 1, longWait);
    QVERIFY(hasTemporaryFolder());
    faketools::openGate(fixture.media + "/gate");
    QVERIFY(workerEndsImportUnseen());
    fixture.drop({second}); // before the end of the first import is heard of
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(second, "probe").size(), 1, longWait);

    tryToDeleteAll(fixture);
    QCOMPARE(fixture.fileList->rowCount(), 2); // the probe's result would find no row, or another file's
    faketools::openGate(fixture.media + "/gate2");
    QTRY_VERIFY_WITH_TIMEOUT(fixture.column(3).value(1).startsWith("10:00:00:00@"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: import ready"), longWait);
    tryToDeleteAll(fixture);
    QCOMPARE(fixture.fileList->rowCount(), 0);
}

void TestFaultsInWindow::aDropThatWaitsForAFailedReadingKeepsItsRows()
{
    WindowFixture fixture;
    const QString first = fixture.addFile("a.mov");
    const QString second = fixture.addFile("b.mov");
    fixture.drop({first});
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: import ready"), longWait);
    faketools::setPlan(first, {{"extract", QJsonObject{{"waitFor", "gate"}, {"exitCode", 1}}}});
    faketools::setPlan(second, waiting("probe", "gate2"));
    readAllAgain(fixture);
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(first, "extract").size(), 2, longWait);
    fixture.drop({second});
    faketools::openGate(fixture.media + "/gate"); // the reading fails, and ends like an import
    QTRY_COMPARE_WITH_TIMEOUT(faketools::calls(second, "probe").size(), 1, longWait);

    tryToDeleteAll(fixture);
    QCOMPARE(fixture.fileList->rowCount(), 2);
    faketools::openGate(fixture.media + "/gate2");
    QTRY_VERIFY_WITH_TIMEOUT(fixture.column(3).value(1).startsWith("10:00:00:00@"), longWait);
    QTRY_COMPARE_WITH_TIMEOUT(fixture.status(), QString("Status: import ready"), longWait);
    tryToDeleteAll(fixture);
    QCOMPARE(fixture.fileList->rowCount(), 0);
}

void TestFaultsInWindow::aSecondExportIsNotOfferedWhileTheFirstIsOnItsWay()
{
    WindowFixture fixture;
    fixture.addFile("a.mov");
    QVERIFY(fixture.import());
    const auto *exportAll = fixture.child<QAction>("exportAllAction");
    QSemaphore workerMayGoOn;
    auto *inWorker = new QObject;
    inWorker->moveToThread(fixture.child<QThread>("workerThread"));
    connect(fixture.child<QThread>("workerThread"), &QThread::finished, inWorker, &QObject::deleteLater);
    QMetaObject::invokeMethod(inWorker, [&workerMayGoOn] { workerMayGoOn.acquire(); });

    fixture.startExport();
    const bool isOffered = exportAll->isEnabled();
    workerMayGoOn.release();
    QVERIFY2(!isOffered, "both would write the same files and count as one");
    fixture.boxes.answerNext(QMessageBox::Ok);
    QTRY_VERIFY_WITH_TIMEOUT(exportAll->isEnabled(), longWait);
    QCOMPARE(fixture.exportedFiles(), QStringList{"a.mov"});
    tryToDeleteAll(fixture);
    fixture.startExport(); // of nothing, which never starts
    QVERIFY(exportAll->isEnabled());
}

void TestFaultsInWindow::aNameThatIsNoTextGetsARow()
{
    WindowFixture fixture;
    const QByteArray name = QFile::encodeName(fixture.media) + "/Caf\xE9.mov"; // in Latin-1
    QVERIFY(std::ofstream(name.constData()));
    QVERIFY(fixture.import());
    QCOMPARE(fixture.column(0), QStringList{QString("Caf%1.mov").arg(QChar(QChar::ReplacementCharacter))});
    QCOMPARE(fixture.column(3), QStringList{"error while reading file data"});
    QCOMPARE(std::remove(name.constData()), 0); // the toolkit could not
}

QTEST_MAIN(TestFaultsInWindow)
#include "tst_faultsinwindow.moc"

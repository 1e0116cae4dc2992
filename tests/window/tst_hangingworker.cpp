// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "testkit/fixtures/windowfixture.h"

#include <QElapsedTimer>
#include <QTest>

namespace
{

} // namespace

class TestHangingWorker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aWorkerThatHangsDoesNotKeepTheWindow();
};

void TestHangingWorker::initTestCase()
{
    registerRecordTypes();
    // Qt warns of the thread that is terminated in the middle of an event, which is what this is about.
    qunsetenv("QT_FATAL_WARNINGS");
}

void TestHangingWorker::aWorkerThatHangsDoesNotKeepTheWindow()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the address sanitizer takes the stack of a terminated thread for a fault");
#endif
    auto fixture = std::make_unique<WindowFixture>();
    auto *worker = fixture->window->findChild<QThread *>("workerThread");
    QVERIFY(worker && worker->isRunning());
    QAtomicInt hangs = 0;
    auto *inWorker = new QObject;
    inWorker->moveToThread(worker);
    QMetaObject::invokeMethod(inWorker, [&hangs] {
        hangs = 1;
        QThread::sleep(3600);
    });
    QTRY_COMPARE_WITH_TIMEOUT(hangs.loadAcquire(), 1, longWait);
    QElapsedTimer timer;
    timer.start();
    fixture.reset();
    QVERIFY2(timer.elapsed() >= 5000, "the worker is given five seconds");
    QVERIFY2(timer.elapsed() < longWait, "and no more");
}

QTEST_MAIN(TestHangingWorker)
#include "tst_hangingworker.moc"

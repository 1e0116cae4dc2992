// SPDX-License-Identifier: MIT
#include "app/terminationsignals.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>

class TestTerminationSignals : public QObject
{
    Q_OBJECT

private slots:
    void theEndOfASessionReachesTheEventLoop_data();
    void theEndOfASessionReachesTheEventLoop();
};

void TestTerminationSignals::theEndOfASessionReachesTheEventLoop_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("hang up") << SIGHUP;
}

void TestTerminationSignals::theEndOfASessionReachesTheEventLoop()
{
    QFETCH(int, number);
    const TerminationSignals signalsOfTheProcess;
    QSignalSpy requested(&signalsOfTheProcess, &TerminationSignals::terminationRequested);
    QCOMPARE(raise(number), 0);
    QTRY_COMPARE(requested.count(), 1);
}

QTEST_GUILESS_MAIN(TestTerminationSignals)
#include "tst_terminationsignals.moc"

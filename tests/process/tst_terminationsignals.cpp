// SPDX-License-Identifier: MIT
#include "process/terminationsignals.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>

class TestTerminationSignals : public QObject
{
    Q_OBJECT

private slots:
    void theEndOfASessionReachesTheEventLoop_data();
    void theEndOfASessionReachesTheEventLoop();
    void aHangUpThatIsIgnoredStaysIgnored();
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

void TestTerminationSignals::aHangUpThatIsIgnoredStaysIgnored()
{
    std::signal(SIGHUP, SIG_IGN); // as "nohup" starts a program
    {
        const TerminationSignals signalsOfTheProcess;
        QSignalSpy requested(&signalsOfTheProcess, &TerminationSignals::terminationRequested);
        QCOMPARE(raise(SIGHUP), 0);
        QCOMPARE(raise(SIGTERM), 0); // arrives after anything that the first one causes
        QTRY_VERIFY(!requested.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(requested.count(), 1);
    }
    QVERIFY2(std::signal(SIGHUP, SIG_DFL) == SIG_IGN, "to the end of the program");
}

QTEST_GUILESS_MAIN(TestTerminationSignals)
#include "tst_terminationsignals.moc"

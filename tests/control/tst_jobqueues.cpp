// SPDX-License-Identifier: MIT
#include "control/jobqueues.h"

#include <QTest>

namespace
{

FileData fileOfRow(int row)
{
    FileData file;
    file.rowNumber = row;
    return file;
}

void start(JobQueues &jobs, JobQueues::Kind kind, int count)
{
    for (int i = 0; i < count; ++i)
        jobs.started(kind);
}

} // namespace

class TestJobQueues : public QObject
{
    Q_OBJECT

private slots:
    void fortyFiveJobsRunAtOnce_data();
    void fortyFiveJobsRunAtOnce();
    void aLowerLimitHolds_data();
    void aLowerLimitHolds();
    void jobsOfAllKindsCountTogether();
    void theFirstThatWaitsIsTheFirstTaken();
    void nothingIsTakenWhileTheLimitIsReached();
    void aHeldKindDoesNotStart();
    void oneJobOfEachKindIsServedProbesFirst();
    void servingStopsAtTheLimit();
    void servingEmptyQueuesStartsNothing();
    void readersBeyondTheLimitAreCounted();
    void theCountNeverFallsBelowZero();
    void aKindIsBusyWhileOneRunsOrWaits();
};

void TestJobQueues::fortyFiveJobsRunAtOnce_data()
{
    QTest::addColumn<int>("running");
    QTest::addColumn<bool>("mayStart");
    QTest::newRow("nothing runs") << 0 << true;
    QTest::newRow("44 run: one more starts") << 44 << true;
    QTest::newRow("45 run: the next one waits") << 45 << false;
    QTest::newRow("60 run: the next one waits") << 60 << false;
}

void TestJobQueues::fortyFiveJobsRunAtOnce()
{
    QFETCH(int, running);
    JobQueues jobs;
    start(jobs, JobQueues::Probe, running);
    QCOMPARE(jobs.running(), running);
    QTEST(jobs.mayStart(JobQueues::Export), "mayStart");
}

void TestJobQueues::aLowerLimitHolds_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("most");
    QTest::newRow("two together") << 2 << 2;
    QTest::newRow("all") << 45 << 45;
    QTest::newRow("no more than all") << 46 << 45;
    QTest::newRow("at least one") << 0 << 1;
}

void TestJobQueues::aLowerLimitHolds()
{
    QFETCH(int, limit);
    QFETCH(int, most);
    JobQueues jobs;
    jobs.setLimit(limit);
    start(jobs, JobQueues::Export, most - 1);
    QVERIFY(jobs.mayStart(JobQueues::Probe));
    start(jobs, JobQueues::Reading, 1);
    QVERIFY(!jobs.mayStart(JobQueues::Probe));
}

void TestJobQueues::jobsOfAllKindsCountTogether()
{
    JobQueues jobs;
    start(jobs, JobQueues::Probe, 10);
    start(jobs, JobQueues::Extraction, 10);
    start(jobs, JobQueues::Reading, 10);
    start(jobs, JobQueues::Export, 15);
    QCOMPARE(jobs.running(), 45);
    QVERIFY(!jobs.mayStart(JobQueues::Probe));
    jobs.finished(JobQueues::Export);
    QVERIFY(jobs.mayStart(JobQueues::Probe));
}

void TestJobQueues::theFirstThatWaitsIsTheFirstTaken()
{
    JobQueues jobs;
    for (int row = 0; row < 100; ++row)
        jobs.enqueue(JobQueues::Reading, fileOfRow(row));
    for (int row = 0; row < 100; ++row)
        QCOMPARE(jobs.takeNext(JobQueues::Reading).value().rowNumber, row);
    QVERIFY(!jobs.takeNext(JobQueues::Reading));
}

void TestJobQueues::nothingIsTakenWhileTheLimitIsReached()
{
    JobQueues jobs;
    start(jobs, JobQueues::Export, JobQueues::maximumRunning);
    jobs.enqueue(JobQueues::Probe, fileOfRow(3));
    QVERIFY(!jobs.takeNext(JobQueues::Probe));
    jobs.finished(JobQueues::Export);
    QCOMPARE(jobs.takeNext(JobQueues::Probe).value().rowNumber, 3);
}

void TestJobQueues::aHeldKindDoesNotStart()
{
    JobQueues jobs;
    jobs.setHeld(JobQueues::Probe, true);
    jobs.enqueue(JobQueues::Probe, fileOfRow(1));
    QVERIFY(!jobs.mayStart(JobQueues::Probe));
    QVERIFY(!jobs.takeNext(JobQueues::Probe));
    QVERIFY(jobs.mayStart(JobQueues::Export));
    jobs.setHeld(JobQueues::Probe, false);
    QVERIFY(jobs.takeNext(JobQueues::Probe));
}

void TestJobQueues::oneJobOfEachKindIsServedProbesFirst()
{
    JobQueues jobs;
    start(jobs, JobQueues::Probe, 30);
    for (const auto kind : {JobQueues::Export, JobQueues::Reading, JobQueues::Extraction, JobQueues::Probe}) {
        jobs.enqueue(kind, fileOfRow(kind * 10));
        jobs.enqueue(kind, fileOfRow(kind * 10 + 1));
    }

    QVector<int> kinds;
    QVector<int> rows;
    const auto note = [&](JobQueues::Kind kind, const FileData &file) {
        jobs.started(kind);
        kinds += kind;
        rows += file.rowNumber;
    };
    QVERIFY(jobs.serve(note));
    QCOMPARE(kinds,
             (QVector<int>{JobQueues::Probe, JobQueues::Extraction, JobQueues::Reading, JobQueues::Export}));
    QCOMPARE(rows, (QVector<int>{0, 10, 20, 30}));
    QVERIFY(jobs.serve(note));
    QCOMPARE(rows, (QVector<int>{0, 10, 20, 30, 1, 11, 21, 31}));
    QVERIFY(!jobs.serve(note));
}

void TestJobQueues::servingStopsAtTheLimit()
{
    JobQueues jobs;
    start(jobs, JobQueues::Probe, 43);
    for (const auto kind : {JobQueues::Probe, JobQueues::Extraction, JobQueues::Reading, JobQueues::Export})
        jobs.enqueue(kind, fileOfRow(kind));

    QVector<int> kinds;
    jobs.serve([&](JobQueues::Kind kind, const FileData &) {
        jobs.started(kind);
        kinds += kind;
    });
    QCOMPARE(kinds, (QVector<int>{JobQueues::Probe, JobQueues::Extraction}));
}

void TestJobQueues::servingEmptyQueuesStartsNothing()
{
    JobQueues jobs;
    QVERIFY(!jobs.serve([](JobQueues::Kind, const FileData &) { QFAIL("nothing waits"); }));
}

void TestJobQueues::readersBeyondTheLimitAreCounted()
{
    JobQueues jobs;
    start(jobs, JobQueues::Probe, 44);
    start(jobs, JobQueues::Reading, 8); // of one file
    QCOMPARE(jobs.running(), 52);
    for (int i = 0; i < 7; ++i)
        jobs.finished(JobQueues::Reading);
    QVERIFY(!jobs.mayStart(JobQueues::Probe));
    jobs.finished(JobQueues::Reading);
    QVERIFY(jobs.mayStart(JobQueues::Probe));
}

void TestJobQueues::theCountNeverFallsBelowZero()
{
    JobQueues jobs;
    jobs.finished(JobQueues::Probe);
    QCOMPARE(jobs.running(), 0);
    jobs.started(JobQueues::Probe);
    QCOMPARE(jobs.running(), 1);
}

void TestJobQueues::aKindIsBusyWhileOneRunsOrWaits()
{
    JobQueues jobs;
    QVERIFY(!jobs.isBusy(JobQueues::Probe));
    jobs.enqueue(JobQueues::Probe, fileOfRow(0));
    QVERIFY(jobs.isBusy(JobQueues::Probe));
    QVERIFY(!jobs.isBusy(JobQueues::Export));
    jobs.takeNext(JobQueues::Probe);
    jobs.started(JobQueues::Probe);
    QVERIFY(jobs.isBusy(JobQueues::Probe));
    jobs.finished(JobQueues::Probe);
    QVERIFY(!jobs.isBusy(JobQueues::Probe));
}

QTEST_APPLESS_MAIN(TestJobQueues)
#include "tst_jobqueues.moc"

// SPDX-License-Identifier: MIT
#include "control/stageprogress.h"

#include <QTest>

using Mode = StageProgress::Mode;

class TestStageProgress : public QObject
{
    Q_OBJECT

private slots:
    void eachFileIsWorthItsUnits_data();
    void eachFileIsWorthItsUnits();
    void aStageIsCompleteAtItsTotal();
    void progressAdvancesOnlyToAGreaterFraction();
    void theFractionOutlivesTheCounters();
};

void TestStageProgress::eachFileIsWorthItsUnits_data()
{
    QTest::addColumn<uint>("files");
    QTest::addColumn<uint>("extraReads");
    QTest::addColumn<uint>("probing");
    QTest::addColumn<uint>("import");
    QTest::addColumn<uint>("reRead");
    QTest::newRow("nothing") << 0U << 0U << 0U << 0U << 0U;
    QTest::newRow("one file, one reader") << 1U << 0U << 3U << 3U << 2U;
    QTest::newRow("one file, three readers") << 1U << 2U << 3U << 5U << 4U;
    QTest::newRow("2,000 files of four streams") << 2000U << 6000U << 6000U << 12000U << 10000U;
}

void TestStageProgress::eachFileIsWorthItsUnits()
{
    QFETCH(uint, files);
    QFETCH(uint, extraReads);
    StageProgress progress;
    progress.setFiles(files);
    progress.addExtraReads(extraReads);
    QTEST(progress.probingTotal(), "probing");
    QTEST(progress.total(Mode::Import), "import");
    QTEST(progress.total(Mode::ReRead), "reRead");
    QCOMPARE(progress.hasFiles(), files > 0);
}

void TestStageProgress::aStageIsCompleteAtItsTotal()
{
    StageProgress progress;
    progress.addFile();
    progress.addUnits(2);
    QVERIFY(!progress.isComplete(Mode::Import));
    QVERIFY(progress.isComplete(Mode::ReRead));
    progress.addUnits(1);
    QVERIFY(progress.isComplete(Mode::Import));
    progress.addExtraReads(1);
    QVERIFY(!progress.isComplete(Mode::Import));
    progress.resetCounters();
    QCOMPARE(progress.unitsDone(), 0U);
    QCOMPARE(progress.total(Mode::Import), 0U);
}

void TestStageProgress::progressAdvancesOnlyToAGreaterFraction()
{
    StageProgress progress;
    progress.setFiles(2);
    progress.addUnits(2);
    QVERIFY(progress.advance(Mode::ReRead)); // 2 of 4
    QVERIFY(!progress.advance(Mode::ReRead));
    progress.addExtraReads(2);
    progress.addUnits(1);
    QVERIFY(!progress.advance(Mode::ReRead)); // 3 of 6: the same fraction
    progress.addUnits(1);
    QVERIFY(progress.advance(Mode::ReRead)); // 4 of 6
    progress.addExtraReads(4);
    progress.addUnits(1);
    QVERIFY(!progress.advance(Mode::ReRead)); // 5 of 10: a smaller fraction
}

void TestStageProgress::theFractionOutlivesTheCounters()
{
    StageProgress progress;
    progress.setFiles(1);
    progress.addUnits(2);
    QVERIFY(progress.advance(Mode::ReRead));
    progress.resetCounters();
    progress.setFiles(1);
    progress.addUnits(2);
    QVERIFY(!progress.advance(Mode::ReRead));
    progress.resetFraction();
    QVERIFY(progress.advance(Mode::ReRead));
}

QTEST_APPLESS_MAIN(TestStageProgress)
#include "tst_stageprogress.moc"

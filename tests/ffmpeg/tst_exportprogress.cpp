// SPDX-License-Identifier: MIT
#include "ffmpeg/exportprogress.h"

#include <QTest>

class TestExportProgress : public QObject
{
    Q_OBJECT

private slots:
    void stepsFollowTheSizeOfTheOutput_data();
    void stepsFollowTheSizeOfTheOutput();
    void onlyTheLastStepIsNotMeasured_data();
    void onlyTheLastStepIsNotMeasured();
};

void TestExportProgress::stepsFollowTheSizeOfTheOutput_data()
{
    QTest::addColumn<qint64>("size");         // [bytes]
    QTest::addColumn<qint64>("bytesPerStep"); // [bytes]
    QTest::addColumn<uint>("before");
    QTest::addColumn<uint>("steps");
    QTest::addColumn<uint>("expected");

    QTest::newRow("no output yet") << qint64{0} << qint64{1000} << 0U << 100U << 0U;
    QTest::newRow("the first byte is a step") << qint64{1} << qint64{1000} << 0U << 100U << 1U;
    QTest::newRow("a whole step opens no second one") << qint64{1000} << qint64{1000} << 0U << 100U << 1U;
    QTest::newRow("5500 bytes are six steps") << qint64{5500} << qint64{1000} << 0U << 100U << 6U;
    QTest::newRow("steps done before are kept") << qint64{5500} << qint64{1000} << 4U << 100U << 6U;
    QTest::newRow("an output that shrank takes nothing back")
        << qint64{10} << qint64{1000} << 4U << 100U << 4U;
    QTest::newRow("beyond the expected size") << qint64{200'000} << qint64{1000} << 0U << 100U << 99U;
    QTest::newRow("the last step is kept") << qint64{200'000} << qint64{1000} << 99U << 100U << 99U;
    QTest::newRow("nothing expected, nothing written") << qint64{0} << qint64{0} << 0U << 15U << 0U;
    QTest::newRow("nothing expected, something written") << qint64{1} << qint64{0} << 0U << 15U << 14U;
    QTest::newRow("one step is the last step") << qint64{5000} << qint64{1000} << 0U << 1U << 0U;
    QTest::newRow("no steps") << qint64{5000} << qint64{0} << 0U << 0U << 0U;
    QTest::newRow("terabytes") << (qint64{1} << 45) << (qint64{1} << 42) << 0U << 15U << 8U;
}

void TestExportProgress::stepsFollowTheSizeOfTheOutput()
{
    QFETCH(qint64, size);
    QFETCH(qint64, bytesPerStep);
    QFETCH(uint, before);
    QFETCH(uint, steps);
    QFETCH(uint, expected);
    QCOMPARE(exportprogress::stepsReached(size, bytesPerStep, before, steps), expected);
}

void TestExportProgress::onlyTheLastStepIsNotMeasured_data()
{
    QTest::addColumn<uint>("done");
    QTest::addColumn<uint>("steps");
    QTest::addColumn<bool>("measured");

    QTest::newRow("at the start") << 0U << 15U << true;
    QTest::newRow("two left") << 13U << 15U << true;
    QTest::newRow("one left") << 14U << 15U << false;
    QTest::newRow("ended") << 15U << 15U << false;
    QTest::newRow("one step in all") << 0U << 1U << false;
    QTest::newRow("no steps") << 0U << 0U << false;
}

void TestExportProgress::onlyTheLastStepIsNotMeasured()
{
    QFETCH(uint, done);
    QFETCH(uint, steps);
    QFETCH(bool, measured);
    QCOMPARE(exportprogress::isMeasured(done, steps), measured);
}

QTEST_APPLESS_MAIN(TestExportProgress)
#include "tst_exportprogress.moc"

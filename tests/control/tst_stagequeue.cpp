// SPDX-License-Identifier: MIT
#include "control/stagequeue.h"

#include <QTest>

using Stage = StageQueue::Stage;

Q_DECLARE_METATYPE(Stage)

namespace
{

StageQueue::Request drop()
{
    return QList<QUrl>{QUrl("file:///card")};
}

StageQueue::Request reRead()
{
    return StageQueue::ReReadRequest{};
}

} // namespace

class TestStageQueue : public QObject
{
    Q_OBJECT

private slots:
    void aStageBeginsWhenNothingIsInItsWay_data();
    void aStageBeginsWhenNothingIsInItsWay();
    void whatWaitsIsTakenInOrder();
    void aDropJoinsAnImportAheadOfWhatWaits();
};

void TestStageQueue::aStageBeginsWhenNothingIsInItsWay_data()
{
    QTest::addColumn<Stage>("current");
    QTest::addColumn<bool>("idle");
    QTest::addColumn<bool>("dropBegins");
    QTest::addColumn<bool>("readingBegins");
    QTest::newRow("nothing under way") << Stage::None << true << true << true;
    QTest::newRow("jobs of no stage") << Stage::None << false << true << false;
    QTest::newRow("an import") << Stage::Import << false << true << false;
    QTest::newRow("an import whose jobs have ended") << Stage::Import << true << true << false;
    QTest::newRow("a reading") << Stage::ReRead << false << false << false;
    QTest::newRow("a reading whose jobs have ended") << Stage::ReRead << true << false << false;
}

void TestStageQueue::aStageBeginsWhenNothingIsInItsWay()
{
    QFETCH(Stage, current);
    QFETCH(bool, idle);
    for (const bool isDrop : {true, false}) {
        StageQueue stages;
        stages.begin(current);
        QTEST(stages.admit(isDrop ? drop() : reRead(), idle), isDrop ? "dropBegins" : "readingBegins");
    }
}

void TestStageQueue::whatWaitsIsTakenInOrder()
{
    StageQueue stages;
    stages.begin(Stage::ReRead);
    QVERIFY(!stages.admit(drop(), false));
    QVERIFY(!stages.admit(reRead(), false));
    QVERIFY(!stages.takeNext(true));
    stages.close();
    QVERIFY2(!stages.admit(drop(), true), "others wait longer");

    auto next = stages.takeNext(true);
    QVERIFY(next && std::holds_alternative<QList<QUrl>>(*next));
    QVERIFY2(!stages.takeNext(false), "the import has begun");
    next = stages.takeNext(true);
    QVERIFY(next && std::holds_alternative<StageQueue::ReReadRequest>(*next));
    stages.clear();
    QVERIFY(!stages.takeNext(true));
}

void TestStageQueue::aDropJoinsAnImportAheadOfWhatWaits()
{
    StageQueue stages;
    stages.begin(Stage::Import);
    QVERIFY(!stages.admit(reRead(), false));
    QVERIFY(stages.admit(drop(), false));
}

QTEST_APPLESS_MAIN(TestStageQueue)
#include "tst_stagequeue.moc"

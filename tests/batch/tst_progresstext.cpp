// SPDX-License-Identifier: MIT
#include "batch/progresstext.h"

#include <QTest>

class TestProgressText : public QObject
{
    Q_OBJECT

private slots:
    void theBarShowsShareAndTimeLeft_data();
    void theBarShowsShareAndTimeLeft();
    void eachTenthGetsALine_data();
    void eachTenthGetsALine();
    void aLineNamesTheShare();
};

void TestProgressText::theBarShowsShareAndTimeLeft_data()
{
    QTest::addColumn<int>("done");
    QTest::addColumn<int>("total");
    QTest::addColumn<double>("elapsed");
    QTest::addColumn<QString>("text");
    const QString full(30, '#');
    QTest::newRow("at the beginning nothing is known of the end")
        << 0 << 10 << 5.0 << "reading [..............................]   0 %";
    QTest::newRow("half") << 30 << 60 << 61.0 << "reading [###############...............]  50 %, 1:01 left";
    QTest::newRow("hours") << 1 << 3 << 3700.0
                           << "reading [##########....................]  33 %, 2:03:20 left";
    QTest::newRow("the end") << 60 << 60 << 9.0 << "reading [" + full + "] 100 %";
    QTest::newRow("beyond the end") << 61 << 60 << 9.0 << "reading [" + full + "] 100 %";
    QTest::newRow("of nothing") << 0 << 0 << 9.0 << "reading [..............................]   0 %";
}

void TestProgressText::theBarShowsShareAndTimeLeft()
{
    QFETCH(int, done);
    QFETCH(int, total);
    QFETCH(double, elapsed);
    QTEST(progresstext::bar("reading", done, total, elapsed), "text");
}

void TestProgressText::eachTenthGetsALine_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("done");
    QTest::addColumn<bool>("isDue");
    QTest::newRow("within a tenth") << 1 << 5 << false;
    QTest::newRow("into the next") << 5 << 6 << true;
    QTest::newRow("over several") << 5 << 40 << true;
    QTest::newRow("the end") << 59 << 60 << true;
    QTest::newRow("the end again") << 60 << 60 << false;
    QTest::newRow("back") << 40 << 30 << false;
}

void TestProgressText::eachTenthGetsALine()
{
    QFETCH(int, before);
    QFETCH(int, done);
    QTEST(progresstext::isLineDue(before, done, 60), "isDue");
}

void TestProgressText::aLineNamesTheShare()
{
    QCOMPARE(progresstext::line("exporting", 1, 3), QString("exporting: 33 %\n"));
}

QTEST_APPLESS_MAIN(TestProgressText)
#include "tst_progresstext.moc"

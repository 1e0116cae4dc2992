// SPDX-License-Identifier: MIT
#include "batch/printedtable.h"

#include <QTest>

class TestPrintedTable : public QObject
{
    Q_OBJECT

private slots:
    void columnsAreAtLeastAsWideAsTheirTitle();
    void linesAreAligned_data();
    void linesAreAligned();
};

namespace
{

PrintedTable table()
{
    return PrintedTable({{"File", 6}, {"Audio TC", 3}, {"End", 0}});
}

} // namespace

void TestPrintedTable::columnsAreAtLeastAsWideAsTheirTitle()
{
    QCOMPARE(table().header(), QString("File    Audio TC  End\n"
                                       "------  --------  ---\n"));
}

void TestPrintedTable::linesAreAligned_data()
{
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QString>("line");
    QTest::newRow("short cells are filled") << QStringList{"a", "b", "c"} << "a       b         c\n";
    QTest::newRow("a long cell moves the rest")
        << QStringList{"a.long.name", "b", "c"} << "a.long.name  b         c\n";
    QTest::newRow("nothing trails") << QStringList{"a", "", ""} << "a\n";
}

void TestPrintedTable::linesAreAligned()
{
    QFETCH(QStringList, cells);
    QTEST(table().line(cells), "line");
}

QTEST_APPLESS_MAIN(TestPrintedTable)
#include "tst_printedtable.moc"

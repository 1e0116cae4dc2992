// SPDX-License-Identifier: MIT
#include "filelist/tablecopy.h"

#include <QTest>

class TestTableCopy : public QObject
{
    Q_OBJECT

private slots:
    void rowsBecomeLinesAndCellsAreParted_data();
    void rowsBecomeLinesAndCellsAreParted();
};

void TestTableCopy::rowsBecomeLinesAndCellsAreParted_data()
{
    QTest::addColumn<QVector<QStringList>>("rows");
    QTest::addColumn<QString>("text");
    QTest::newRow("no rows") << QVector<QStringList>{} << "Name\tTC\n";
    QTest::newRow("two rows") << QVector<QStringList>{{"a.wav", "1"}, {"b.wav", "2"}}
                              << "Name\tTC\na.wav\t1\nb.wav\t2\n";
    QTest::newRow("tabs and line breaks in a name")
        << QVector<QStringList>{{"a\tb\nc\rd.wav", ""}} << "Name\tTC\na b c d.wav\t\n";
}

void TestTableCopy::rowsBecomeLinesAndCellsAreParted()
{
    QFETCH(QVector<QStringList>, rows);
    QTEST(tabSeparated({"Name", "TC"}, rows), "text");
}

QTEST_APPLESS_MAIN(TestTableCopy)
#include "tst_tablecopy.moc"

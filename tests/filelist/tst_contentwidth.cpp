// SPDX-License-Identifier: MIT
#include "filelist/contentwidth.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

class TestContentWidth : public QObject
{
    Q_OBJECT

private slots:
    void anEmptyColumnHasNoWidth();
    void theWidestRowCounts();
    void itAgreesWithALookAtEveryRow();
};

void TestContentWidth::anEmptyColumnHasNoWidth()
{
    ContentWidth widths;
    QCOMPARE(widths.widest(), 0);
    widths.remove(0, 3);
    QCOMPARE(widths.widest(), 0);
}

void TestContentWidth::theWidestRowCounts()
{
    ContentWidth widths;
    widths.set(0, 50);
    widths.set(2, 80);
    QCOMPARE(widths.widest(), 80);
    widths.set(2, 30);
    QCOMPARE(widths.widest(), 50);
    widths.move(2, 1);
    QCOMPARE(widths.widest(), 50);
    widths.remove(0, 1);
    QCOMPARE(widths.widest(), 30);
    widths.clear();
    QCOMPARE(widths.widest(), 0);
}

void TestContentWidth::itAgreesWithALookAtEveryRow()
{
    QRandomGenerator random(7);
    ContentWidth widths;
    QVector<int> plain;
    for (int step = 0; step < 2000; ++step) {
        const int rows = static_cast<int>(plain.size());
        if (!plain.isEmpty() && random.bounded(4) == 0) {
            const int first = random.bounded(rows);
            const int count = 1 + random.bounded(rows - first);
            plain.remove(first, count);
            widths.remove(first, count);
        } else if (!plain.isEmpty() && random.bounded(4) == 0) {
            const int from = random.bounded(rows);
            const int to = random.bounded(rows);
            plain[to] = plain.at(from);
            if (from != to)
                plain[from] = 0;
            widths.move(from, to);
        } else {
            const int row = random.bounded(rows + 1);
            const int width = random.bounded(20);
            if (row == rows)
                plain.append(0);
            plain[row] = width;
            widths.set(row, width);
        }
        QCOMPARE(widths.widest(), plain.isEmpty() ? 0 : *std::max_element(plain.cbegin(), plain.cend()));
    }
}

QTEST_APPLESS_MAIN(TestContentWidth)
#include "tst_contentwidth.moc"

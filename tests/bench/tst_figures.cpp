// SPDX-License-Identifier: MIT
#include "bench/support/chart.h"
#include "bench/support/figures.h"
#include "bench/support/statistics.h"

#include <QJsonArray>
#include <QTest>
#include <QXmlStreamReader>

using namespace bench;

class TestFigures : public QObject
{
    Q_OBJECT

private slots:
    void theMedianIsTheMiddle_data();
    void theMedianIsTheMiddle();
    void aLimitIsKeptUpToItself_data();
    void aLimitIsKeptUpToItself();
    void peopleSeeTablesAndLimits();
    void programsSeeTheSame();
    void chartsAreWellFormed_data();
    void chartsAreWellFormed();
};

void TestFigures::theMedianIsTheMiddle_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<double>("middle");
    QTest::newRow("none") << QVector<double>{} << 0.0;
    QTest::newRow("one") << QVector<double>{3} << 3.0;
    QTest::newRow("three in any order") << QVector<double>{9, 1, 2} << 2.0;
    QTest::newRow("between two") << QVector<double>{4, 1, 2, 9} << 3.0;
}

void TestFigures::theMedianIsTheMiddle()
{
    QFETCH(QVector<double>, values);
    QTEST(median(values), "middle");
}

void TestFigures::aLimitIsKeptUpToItself_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("holds");
    QTest::newRow("below") << 1.0 << true;
    QTest::newRow("on it") << 1.05 << true;
    QTest::newRow("above") << 1.06 << false;
    QTest::newRow("no figure at all") << qQNaN() << false;
}

void TestFigures::aLimitIsKeptUpToItself()
{
    QFETCH(double, value);
    Figures figures;
    figures.checks = {Check{"fine", 1, 2}, Check{"ratio", value, 1.05}};
    QTEST(figures.allHold(), "holds");
}

void TestFigures::peopleSeeTablesAndLimits()
{
    Figures figures;
    figures.tables = {Table{"Cost", {"rows", "µs"}, {{1000, 12.34}, {50000, 0.5}}}};
    figures.checks = {Check{"growth", 1.2, 1.5}, Check{"block [ms]", 70, 50}};
    QCOMPARE(figures.toText(), QString("Cost\n\n"
                                       "rows   µs\n"
                                       "-----  -----\n"
                                       "1000   12.3\n"
                                       "50000  0.500\n"
                                       "\n"
                                       "kept:   growth: 1.200 (at most 1.500)\n"
                                       "MISSED: block [ms]: 70 (at most 50)\n"));
}

void TestFigures::programsSeeTheSame()
{
    Figures figures;
    figures.tables = {Table{"Cost", {"rows", "µs"}, {{1000, 12.34}}}};
    figures.checks = {Check{"block [ms]", 70, 50}};
    const QJsonObject table{{"title", "Cost"},
                            {"columns", QJsonArray{"rows", "µs"}},
                            {"rows", QJsonArray{QJsonArray{1000, 12.34}}}};
    const QJsonObject check{{"name", "block [ms]"}, {"value", 70}, {"limit", 50}, {"holds", false}};
    QCOMPARE(figures.toJson(), (QJsonObject{{"tables", QJsonArray{table}}, {"checks", QJsonArray{check}}}));
}

void TestFigures::chartsAreWellFormed_data()
{
    QTest::addColumn<QVector<QPointF>>("points");
    QTest::addColumn<bool>("isLinear");
    QTest::newRow("rows by factors") << QVector<QPointF>{{1000, 2}, {10000, 3}, {50000, 70}} << false;
    QTest::newRow("a single number of rows") << QVector<QPointF>{{1000, 2}} << false;
    QTest::newRow("nothing but zeros") << QVector<QPointF>{{1000, 0}, {2000, 0}} << false;
    QTest::newRow("over time") << QVector<QPointF>{{0, 0}, {0.1, 45}, {0.2, 3}} << true;
}

void TestFigures::chartsAreWellFormed()
{
    QFETCH(QVector<QPointF>, points);
    QFETCH(bool, isLinear);
    const Chart chart{
        "a < b", "rows", "µs", {{"one & all", points}}, isLinear ? Chart::Linear : Chart::Logarithmic};
    const QString svg = toSvg({chart, chart});
    QXmlStreamReader reader(svg);
    int lines = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == QLatin1String("polyline"))
            ++lines;
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(lines, 2);
    QVERIFY(!svg.contains("nan") && !svg.contains("inf"));
}

QTEST_APPLESS_MAIN(TestFigures)
#include "tst_figures.moc"

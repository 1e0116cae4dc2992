// SPDX-License-Identifier: MIT
#include "bench/support/figures.h"

#include "demo/reporttable.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace bench
{

namespace
{

QString number(double value)
{
    const double size = std::abs(value);
    if (size >= 100 || value == std::round(value))
        return QString::number(value, 'f', 0);
    return QString::number(value, 'f', size >= 10 ? 1 : 3);
}

QString toText(const Table &table)
{
    QVector<QStringList> rows;
    for (const QVector<double> &values : table.rows) {
        QStringList cells;
        for (const double value : values)
            cells += number(value);
        rows += cells;
    }
    return table.title + "\n\n" + layOutTable(table.columns, rows) + '\n';
}

QString toText(const Check &check)
{
    return QString(check.holds() ? "kept:   " : "MISSED: ") + check.name + ": " + number(check.value) +
           " (at most " + number(check.limit) + ")\n";
}

QJsonObject toJson(const Table &table)
{
    QJsonArray rows;
    for (const QVector<double> &values : table.rows) {
        QJsonArray row;
        for (const double value : values)
            row += value;
        rows += row;
    }
    return {{"title", table.title}, {"columns", QJsonArray::fromStringList(table.columns)}, {"rows", rows}};
}

QJsonObject toJson(const Check &check)
{
    return {{"name", check.name}, {"value", check.value}, {"limit", check.limit}, {"holds", check.holds()}};
}

} // namespace

bool Figures::allHold() const
{
    return std::all_of(checks.cbegin(), checks.cend(), [](const Check &check) { return check.holds(); });
}

QString Figures::toText() const
{
    QString text;
    for (const Table &table : tables)
        text += bench::toText(table);
    for (const Check &check : checks)
        text += bench::toText(check);
    return text;
}

QJsonObject Figures::toJson() const
{
    QJsonArray tableArray;
    for (const Table &table : tables)
        tableArray += bench::toJson(table);
    QJsonArray checkArray;
    for (const Check &check : checks)
        checkArray += bench::toJson(check);
    return {{"tables", tableArray}, {"checks", checkArray}};
}

} // namespace bench

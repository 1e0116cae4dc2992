// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

namespace bench
{

/// One table of figures.
struct Table {
    QString title;
    QStringList columns;           ///< with their units
    QVector<QVector<double>> rows; ///< one figure for each column
};

/// A figure that must not be above its limit.
struct Check {
    QString name; ///< with its unit
    double value;
    double limit;

    bool holds() const { return value <= limit; }
};

/// What a benchmark has found out.
struct Figures {
    QVector<Table> tables;
    QVector<Check> checks;

    bool allHold() const;

    /// Tables and checks laid out for people.
    QString toText() const;

    /// {"tables": [{"title", "columns", "rows"}], "checks": [{"name", "value", "limit", "holds"}]}
    QJsonObject toJson() const;
};

} // namespace bench

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/keeping.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <set>

namespace exportmatrix
{

/// What exports keep and what not, thing by thing and by what is written.
class KeepingTable
{
public:
    /// Reads the table that toMarkdown() writes out of the page \a text; an empty table where there is none.
    static KeepingTable fromMarkdown(const QString &text);

    /// Takes in what became of each thing in one export.
    void add(Target target, const QVector<Finding> &findings);

    bool isEmpty() const { return things.isEmpty(); }
    QString toMarkdown() const;

    /// Where this table says what \a documented does not; if \a isWhole, also where \a documented says more.
    QStringList differences(const KeepingTable &documented, bool isWhole) const;

private:
    using Cells = QMap<Target, std::set<Verdict>>;

    QStringList things; ///< in the order in which they came
    QMap<QString, Cells> rows;
};

} // namespace exportmatrix

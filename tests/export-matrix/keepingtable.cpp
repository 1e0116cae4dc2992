// SPDX-License-Identifier: MIT
#include "tests/export-matrix/keepingtable.h"

#include <algorithm>
#include <utility>

namespace exportmatrix
{
namespace
{

constexpr int targetCount = static_cast<int>(Target::Count);
const char separator[] = " or ";
const char nothing[] = "-";

QString header()
{
    QString line = "| What the source holds |";
    for (int i = 0; i < targetCount; ++i)
        line += ' ' + nameOf(static_cast<Target>(i)) + " |";
    return line;
}

QString textOf(const std::set<Verdict> &verdicts)
{
    QStringList names;
    for (const Verdict verdict :
         {Verdict::Kept, Verdict::Converted, Verdict::NotHeld, Verdict::LeftOut, Verdict::Lost}) {
        if (verdicts.count(verdict) > 0)
            names += nameOf(verdict);
    }
    return names.isEmpty() ? nothing : names.join(separator);
}

std::set<Verdict> verdictsOf(const QString &text)
{
    std::set<Verdict> verdicts;
    const QStringList names = text.split(separator);
    for (const Verdict verdict :
         {Verdict::Kept, Verdict::Converted, Verdict::NotHeld, Verdict::LeftOut, Verdict::Lost}) {
        if (names.contains(nameOf(verdict)))
            verdicts.insert(verdict);
    }
    return verdicts;
}

} // namespace

KeepingTable KeepingTable::fromMarkdown(const QString &text)
{
    KeepingTable table;
    const QStringList lines = text.split('\n');
    auto line = lines.indexOf(header());
    if (line < 0)
        return table;
    for (line += 2; line < lines.size() && lines.at(line).startsWith('|'); ++line) {
        const QStringList cells = lines.at(line).split('|');
        const QString thing = cells.value(1).trimmed();
        table.things += thing;
        for (int i = 0; i < targetCount; ++i)
            table.rows[thing][static_cast<Target>(i)] = verdictsOf(cells.value(2 + i).trimmed());
    }
    return table;
}

void KeepingTable::add(Target target, const QVector<Finding> &findings)
{
    for (const Finding &finding : findings) {
        if (!things.contains(finding.thing))
            things += finding.thing;
        rows[finding.thing][target].insert(finding.verdict);
    }
}

QString KeepingTable::toMarkdown() const
{
    QString text = header() + "\n|" + QString("---|").repeated(1 + targetCount) + '\n';
    for (const QString &thing : things) {
        text += "| " + thing + " |";
        for (int i = 0; i < targetCount; ++i)
            text += ' ' + textOf(rows[thing][static_cast<Target>(i)]) + " |";
        text += '\n';
    }
    return text;
}

QStringList KeepingTable::differences(const KeepingTable &documented, bool isWhole) const
{
    QStringList all = things;
    if (isWhole) {
        std::copy_if(documented.things.begin(), documented.things.end(), std::back_inserter(all),
                     [this](const QString &thing) { return !things.contains(thing); });
    }
    QStringList texts;
    for (const QString &thing : std::as_const(all)) {
        for (int i = 0; i < targetCount; ++i) {
            const auto target = static_cast<Target>(i);
            const std::set<Verdict> found = rows[thing][target];
            const std::set<Verdict> said = documented.rows[thing][target];
            if (isWhole ? found != said
                        : !std::includes(said.begin(), said.end(), found.begin(), found.end()))
                texts += QString("%1, %2: measured \"%3\", documented \"%4\"")
                             .arg(thing, nameOf(target), textOf(found), textOf(said));
        }
    }
    return texts;
}

} // namespace exportmatrix

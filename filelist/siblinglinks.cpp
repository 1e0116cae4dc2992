// SPDX-License-Identifier: MIT
#include "filelist/siblinglinks.h"

#include "filelist/linking.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace
{

/// Calls \a visit with each entry of \a moment whose duration is close to that of \a centre, which is one of
/// them. Distances grow to either side, so the first that is too far ends the way.
template <typename Moment, typename Iterator, typename Visit>
void visitReach(Moment &moment, Iterator centre, const Visit &visit)
{
    const auto isClose = [centre](const auto &entry) {
        return linking::areClose(entry.first, centre->first);
    };
    auto first = centre;
    while (first != moment.begin() && isClose(*std::prev(first)))
        --first;
    for (auto entry = first; entry != moment.end() && isClose(*entry); ++entry)
        visit(entry->second);
}

} // namespace

void SiblingLinks::append(const FileData &file)
{
    const auto row = static_cast<int>(rows.size());
    rows.emplace_back();
    if (!linking::isWave(file))
        return;
    // Times that compare equal count the same milliseconds.
    rows.back().moment = &moments[file.lastModified.toMSecsSinceEpoch()];
    join(row, file.duration);
    setHasTimecode(row, file.hasAudioTC);
}

void SiblingLinks::rebuild(const QVector<FileData> &files)
{
    *this = SiblingLinks();
    for (const FileData &file : files)
        append(file);
}

void SiblingLinks::setDuration(int row, double duration)
{
    Row &entry = at(row);
    if (!entry.moment)
        return;
    if (entry.hasTwins()) {
        entry.twins->second.ownRows.erase(row);
        entry.twins->second.rowsWithTimecode.erase(row);
    }
    join(row, duration);
}

void SiblingLinks::join(int row, double duration)
{
    Row &entry = at(row);
    entry.twins = entry.moment->end();
    if (!std::isfinite(duration))
        return;
    const auto [twins, isNew] = entry.moment->try_emplace(duration, Twins{twinsCount, nullptr});
    if (isNew)
        ++twinsCount;
    entry.twins = twins;
    twins->second.ownRows.insert(row);
    if (entry.hasTimecode)
        twins->second.rowsWithTimecode.insert(row);
}

void SiblingLinks::setHasTimecode(int row, bool hasTimecode)
{
    Row &entry = at(row);
    entry.hasTimecode = hasTimecode;
    if (!entry.hasTwins())
        return;
    if (hasTimecode)
        entry.twins->second.rowsWithTimecode.insert(row);
    else
        entry.twins->second.rowsWithTimecode.erase(row);
}

int SiblingLinks::lastRowWithTimecode(int row) const
{
    int last = -1;
    if (!at(row).hasTwins())
        return last;
    visitReach(*at(row).moment, at(row).twins, [&](const Twins &twins) {
        auto candidate = twins.rowsWithTimecode.crbegin();
        if (candidate != twins.rowsWithTimecode.crend() && *candidate == row)
            ++candidate;
        if (candidate != twins.rowsWithTimecode.crend())
            last = std::max(last, *candidate);
    });
    return last;
}

bool SiblingLinks::mayHaveSiblings(int row) const
{
    const Row &entry = at(row);
    if (!entry.hasTwins())
        return false;
    const auto isClose = [&entry](Moment::const_iterator other) {
        return linking::areClose(other->first, entry.twins->first);
    };
    const auto next = std::next(entry.twins);
    return entry.twins->second.rowCount() > 1 || (next != entry.moment->end() && isClose(next)) ||
           (entry.twins != entry.moment->begin() && isClose(std::prev(entry.twins)));
}

SiblingLinks::PassedOn SiblingLinks::passOn(int row, const Link &link)
{
    PassedOn result;
    if (!at(row).hasTwins())
        return result;
    const auto latest = std::make_shared<const Link>(link);
    visitReach(*at(row).moment, at(row).twins, [&](Twins &twins) {
        std::set<int> ownRows = std::exchange(twins.ownRows, {});
        if (ownRows.erase(row) > 0)
            twins.ownRows.insert(row);
        for (const int own : ownRows) {
            follow(own, twins);
            result.newFollowers += own;
        }
        if (twins.followers == 0)
            return;
        result.hasFollowers = true;
        if (!twins.link)
            twins.link = std::make_shared<SharedLink>();
        twins.link->latest = latest;
        noteWidth(twins);
    });
    return result;
}

void SiblingLinks::follow(int row, Twins &twins)
{
    at(row).follows = true;
    at(row).hasTimecode = true;
    twins.rowsWithTimecode.insert(row);
    ++twins.followers;
}

std::shared_ptr<const SharedLink> SiblingLinks::linkOf(int row) const
{
    return at(row).follows ? at(row).twins->second.link : nullptr;
}

void SiblingLinks::leave(int row)
{
    Row &entry = at(row);
    if (!entry.follows)
        return;
    entry.follows = false;
    Twins &twins = entry.twins->second;
    twins.ownRows.insert(row);
    --twins.followers;
    noteWidth(twins);
}

void SiblingLinks::noteWidth(const Twins &twins)
{
    cellWidths.set(twins.number, twins.followers > 0 ? twins.link->latest->cellWidth : 0);
}

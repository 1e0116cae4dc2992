// SPDX-License-Identifier: MIT
#include "filelist/siblinglinks.h"

#include "filelist/linking.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
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
    // Times that compare equal count the same milliseconds.
    if (linking::isWave(file))
        appendWave(file.lastModified.toMSecsSinceEpoch(), file.duration, file.hasAudioTC);
    else
        rows.emplace_back();
}

void SiblingLinks::appendWave(qint64 modified, double duration, bool hasTimecode)
{
    const auto row = static_cast<int>(rows.size());
    Row entry;
    entry.modified = modified;
    entry.moment = &moments[modified];
    rows.push_back(entry);
    join(row, duration);
    setHasTimecode(row, hasTimecode);
}

void SiblingLinks::rebuildWithout(const QVector<int> &gone)
{
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    SiblingLinks rest;
    auto nextGone = gone.cbegin();
    for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
        const Row &entry = at(row);
        if (nextGone != gone.cend() && *nextGone == row) {
            ++nextGone;
        } else if (entry.moment) {
            rest.appendWave(entry.modified, entry.hasTwins() ? entry.twins->first : noNumber,
                            entry.hasTimecode);
        } else {
            rest.rows.emplace_back();
        }
    }
    *this = std::move(rest);
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
        for (auto own = twins.ownRows.begin(); own != twins.ownRows.end();) {
            if (*own == row) {
                ++own;
                continue;
            }
            follow(*own, twins);
            result.newFollowers += *own;
            own = twins.ownRows.erase(own);
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

// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "filelist/contentwidth.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

#include <map>
#include <memory>
#include <set>
#include <vector>

/// A timecode that one file has passed on to its siblings.
struct Link {
    int sourceRow = -1; ///< of that file, when it passed its timecode on
    QString sourceName; ///< name of that file
    QString timecode;
    QJsonObject result; ///< of the timecode reader
    int cellWidth = 0;  ///< [pixels] of a cell that shows it
};

/// Where rows that follow one link, and their cells, find it. A later link takes its place in one step.
struct SharedLink {
    std::shared_ptr<const Link> latest;
};

/// Who has passed a timecode on to whom, for tables of many thousand rows.
///
/// Rows of equal modification time and equal duration have the same siblings, so they share one link. Passing
/// a timecode on costs a step for each duration within reach and for each row that did not follow a link yet,
/// instead of one for every sibling. A row that gets something of its own leaves the link.
class SiblingLinks
{
public:
    /// Adds the next row, which holds \a file.
    void append(const FileData &file);

    /// Forgets \a gone, ascending; the rows behind them move up. No row follows a link then, and nobody
    /// changes the links that were followed.
    void rebuildWithout(const QVector<int> &gone);

    /// Takes note of another \a duration [s] of \a row, which follows no link.
    void setDuration(int row, double duration);

    /// Takes note whether the file of \a row carries a timecode that its siblings may take over.
    void setHasTimecode(int row, bool hasTimecode);

    /// The last sibling of \a row that carries a timecode; -1 = none.
    int lastRowWithTimecode(int row) const;

    /// Whether \a row has siblings, as far as a look at its neighbours tells; false is certain.
    bool mayHaveSiblings(int row) const;

    struct PassedOn {
        bool hasFollowers = false; ///< there are siblings
        QVector<int> newFollowers; ///< siblings that followed no link before
    };

    /// All siblings of \a row, which follows no link itself, follow \a link from now on.
    PassedOn passOn(int row, const Link &link);

    /// The link that \a row follows; null = none.
    std::shared_ptr<const SharedLink> linkOf(int row) const;

    /// From now on \a row follows no link.
    void leave(int row);

    /// The widest cell of all rows that follow a link [pixels]; 0 = no row does.
    int widestLink() const { return cellWidths.widest(); }

private:
    /// Rows of equal modification time and duration.
    struct Twins {
        int number;                       ///< in cellWidths
        std::shared_ptr<SharedLink> link; ///< null until there is one
        std::set<int> ownRows = {};       ///< rows that follow no link
        std::set<int> rowsWithTimecode = {};
        std::size_t followers = 0;

        std::size_t rowCount() const { return ownRows.size() + followers; }
    };
    using Moment = std::map<double, Twins>; ///< of one modification time, by duration [s]

    struct Row {
        qint64 modified = 0;      ///< key of its moment
        Moment *moment = nullptr; ///< null = no sound file, so without siblings
        Moment::iterator twins;   ///< its own among them; the moment's end = the duration is no number
        bool hasTimecode = false;
        bool follows = false;

        bool hasTwins() const { return moment && twins != moment->end(); }
    };

    Row &at(int row) { return rows.at(static_cast<std::size_t>(row)); }
    const Row &at(int row) const { return rows.at(static_cast<std::size_t>(row)); }
    void appendWave(qint64 modified, double duration, bool hasTimecode);
    void join(int row, double duration);
    void follow(int row, Twins &twins);
    void noteWidth(const Twins &twins);

    std::map<qint64, Moment> moments; ///< by modification time [ms since the epoch]
    std::vector<Row> rows;
    ContentWidth cellWidths; ///< of the twins' links
    int twinsCount = 0;
};

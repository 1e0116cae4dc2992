// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

namespace bench
{

/// The files of a made-up shoot and what the tools would say about them, by row.
struct Shoot {
    enum Kind {
        Ordinary,  ///< camera and sound files in turn, each with a time and a timecode of its own
        OneMoment, ///< sound files of one modification time, lengths a few samples apart: all siblings
        KindCount
    };

    Kind kind;

    QString name() const;
    QString fileName(int row) const;
    QDateTime modified(int row) const;

    /// What the probe tool prints about the file.
    QJsonObject probe(int row) const;

    /// Whether the reader finds a timecode: in every file of an ordinary shoot, else in every second.
    bool hasTimecode(int row) const;

    /// What the reader prints about the file; empty without a timecode.
    QJsonObject readerResult(int row) const;
};

} // namespace bench

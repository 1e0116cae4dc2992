// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QJsonObject>
#include <QString>

#include <optional>

/// What runs have noted about the new files in one folder: a small JSON file for each, in the sub-folder
/// ".ostrel-batch". By them a run knows what an earlier one has done, and no two runs write one name, on
/// whichever machines.
class ExportNotes
{
public:
    explicit ExportNotes(const ExportOptions &options);

    /// Reserves the name \a path, in the folder, for the export of \a file. Returns whether it was free.
    /// Where notes cannot be written every name is free.
    bool claim(const FileData &file, const QString &path) const;

    /// Notes that the new file at \a path, which is there, was proven to be the export of \a file and starts
    /// at \a start.
    void setVerified(const FileData &file, const QString &path, const QString &start) const;

    /// Forgets \a path.
    void drop(const QString &path) const;

    /// A new file that an earlier run has proven.
    struct Done {
        QString path;
        QString start;
    };

    /// The proven export of \a file with the same options and timecode, if it is there and neither it nor the
    /// source has changed since.
    std::optional<Done> verifiedExport(const FileData &file) const;

    /// Removes the new files of \a file that an earlier run has left half done, and frees their names.
    void removeHalfDone(const FileData &file) const;

private:
    QString notePath(const QString &path) const;
    QJsonObject describe(const FileData &file) const;
    static QJsonObject read(const QString &notePath);
    QVector<QJsonObject> notesOf(const FileData &file) const;

    ExportOptions options;
    QString folder; ///< of the notes
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QDirIterator>
#include <QFileInfo>
#include <QList>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <optional>

/// Name patterns of the media files that are imported.
extern const QStringList mediaNameFilters;

/// Whether \a path, dropped as a single file, ends like a media file; case and the dot do not matter.
bool endsLikeMedia(const QString &path);

/// Finds the media files in what was dropped: folders with all their sub-folders, and single files.
///
/// Looks at one entry a step, so that the walk through a huge tree can pause and be given up.
class DroppedFiles
{
public:
    /// Adds a drop, to be looked at after those already added.
    void add(const QList<QUrl> &droppedUrls) { urls += droppedUrls; }

    bool atEnd() const { return !folder && urls.isEmpty(); }

    /// Looks at one more entry. Returns the file when it is a media file. Not to be called at the end.
    std::optional<QFileInfo> step();

private:
    std::optional<QFileInfo> enterNextUrl();
    std::optional<QFileInfo> stepInFolder();

    QList<QUrl> urls;                     ///< not yet looked at
    std::unique_ptr<QDirIterator> folder; ///< the folder being walked; null = none
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QFileInfo>
#include <QList>
#include <QStringList>
#include <QUrl>

#include <filesystem>
#include <optional>
#include <vector>

/// Name patterns of the media files that are imported.
extern const QStringList mediaNameFilters;

/// Whether \a path, dropped as a single file, ends like a media file; case and the dot do not matter.
bool endsLikeMedia(const QString &path);

/// Finds the media files in what was dropped: folders with all their sub-folders, and single files.
///
/// Looks at one entry a step, so that the walk through a huge tree can pause and be given up. A name that is
/// no valid text is found too: with replacement characters, under which the file cannot be opened.
class DroppedFiles
{
public:
    /// Adds a drop, to be looked at after those already added.
    void add(const QList<QUrl> &droppedUrls) { urls += droppedUrls; }

    bool atEnd() const { return folders.empty() && urls.isEmpty(); }

    /// Looks at one more entry. Returns the file when it is a media file. Not to be called at the end.
    std::optional<QFileInfo> step();

private:
    std::optional<QFileInfo> enterNextUrl();
    std::optional<QFileInfo> stepInFolder();
    void enterFolder(const std::filesystem::path &path);

    QList<QUrl> urls; ///< not yet looked at
    /// The folder being walked and, before it, those that it is in; each at its next entry.
    std::vector<std::filesystem::directory_iterator> folders;
};

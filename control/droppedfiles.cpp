// SPDX-License-Identifier: MIT
#include "control/droppedfiles.h"

#include <algorithm>

const QStringList mediaNameFilters{"*.mov", "*.mxf", "*.mp4", "*.mts", "*.wav"};

namespace
{

/// Whether \a path ends like one of the patterns without their first \a skipped characters.
bool endsLikePattern(const QString &path, int skipped)
{
    return std::any_of(mediaNameFilters.cbegin(), mediaNameFilters.cend(), [&](const QString &pattern) {
        return path.endsWith(pattern.midRef(skipped), Qt::CaseInsensitive);
    });
}

} // namespace

bool endsLikeMedia(const QString &path)
{
    return endsLikePattern(path, 2); // behind "*."
}

std::optional<QFileInfo> DroppedFiles::step()
{
    return folder ? stepInFolder() : enterNextUrl();
}

std::optional<QFileInfo> DroppedFiles::enterNextUrl()
{
    const QString path = urls.takeFirst().toLocalFile();
    const QFileInfo fileInfo(path);
    if (!fileInfo.isDir()) {
        if (endsLikeMedia(path))
            return fileInfo;
        return std::nullopt;
    }
    // The iterator's own name filters would skip any number of foreign files in one call; so would leaving
    // out the sub-folders. Both are passed over below, entry by entry.
    folder = std::make_unique<QDirIterator>(path, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot,
                                            QDirIterator::Subdirectories);
    if (!folder->hasNext())
        folder.reset();
    return std::nullopt;
}

std::optional<QFileInfo> DroppedFiles::stepInFolder()
{
    const QString path = folder->next();
    const bool isMedia = !folder->fileInfo().isDir() && endsLikePattern(path, 1); // behind "*"
    if (!folder->hasNext())
        folder.reset();
    if (isMedia)
        return QFileInfo(path);
    return std::nullopt;
}

// SPDX-License-Identifier: MIT
#include "control/droppedfiles.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <system_error>

const QStringList mediaNameFilters{"*.mov", "*.mxf", "*.mp4", "*.mts", "*.wav"};

namespace
{

/// Whether \a path ends like one of the patterns without their first \a skipped characters.
bool endsLikePattern(const QString &path, int skipped)
{
    return std::any_of(mediaNameFilters.cbegin(), mediaNameFilters.cend(), [&](const QString &pattern) {
        return path.endsWith(QStringView(pattern).mid(skipped), Qt::CaseInsensitive);
    });
}

// The toolkit's own walk leaves out every name that it cannot turn into text and back. So folders are walked
// by the bytes of their names.
#ifdef Q_OS_WIN
std::filesystem::path pathOf(const QString &text)
{
    return text.toStdWString();
}

QString textOf(const std::filesystem::path &path)
{
    return QDir::fromNativeSeparators(QString::fromStdWString(path.native()));
}
#else
std::filesystem::path pathOf(const QString &text)
{
    return QFile::encodeName(text).toStdString();
}

QString textOf(const std::filesystem::path &path)
{
    return QFile::decodeName(path.c_str());
}
#endif

} // namespace

bool endsLikeMedia(const QString &path)
{
    return endsLikePattern(path, 2); // behind "*."
}

std::optional<QFileInfo> DroppedFiles::step()
{
    return folders.empty() ? enterNextUrl() : stepInFolder();
}

std::optional<QFileInfo> DroppedFiles::enterNextUrl()
{
    const QString path = urls.takeFirst().toLocalFile();
    const QFileInfo fileInfo(path);
    if (fileInfo.isDir())
        enterFolder(pathOf(path));
    else if (endsLikeMedia(path))
        return fileInfo;
    return std::nullopt;
}

void DroppedFiles::enterFolder(const std::filesystem::path &path)
{
    std::error_code error; // a folder that cannot be read is as good as empty
    const std::filesystem::directory_iterator folder(path, error);
    if (folder != std::filesystem::directory_iterator())
        folders.push_back(folder);
}

std::optional<QFileInfo> DroppedFiles::stepInFolder()
{
    std::error_code error;
    const std::filesystem::directory_entry entry = *folders.back();
    folders.back().increment(error);
    if (folders.back() == std::filesystem::directory_iterator())
        folders.pop_back();

    const QFileInfo fileInfo(textOf(entry.path()));
    if (fileInfo.isHidden())
        return std::nullopt;
    if (entry.is_directory(error)) {
        if (!entry.is_symlink(error)) // such a link may lead in a circle
            enterFolder(entry.path());
        return std::nullopt;
    }
    const bool isMedia =
        endsLikePattern(fileInfo.filePath(), 1) && entry.is_regular_file(error); // behind "*"
    return isMedia ? std::make_optional(fileInfo) : std::nullopt;
}

// SPDX-License-Identifier: MIT
#include "control/readerfilename.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace
{

constexpr int suffixLength = 4; // ".wav"

/// Cuts the number behind the last "_" off the end of \a path, with the "_"; 0 when there is no number.
int cutLastNumber(QString &path)
{
    const auto separator = path.lastIndexOf('_');
    const int number = path.mid(separator + 1).toInt();
    path.truncate(separator < 0 ? 0 : separator);
    return number;
}

} // namespace

ReaderFileName ReaderFileName::parse(const QString &filePath)
{
    ReaderFileName name;
    QString rest = filePath.size() < suffixLength ? QString() : filePath.chopped(suffixLength);
    name.row = cutLastNumber(rest);
    name.shortenedPath = rest;
    name.audioStream = cutLastNumber(rest);
    return name;
}

bool wasExtractedForAnotherRow(const QString &fileName, int row)
{
    static const QRegularExpression extracted("_[0-9]+_(-?[0-9]+)\\.wav\\z");
    const QRegularExpressionMatch match = extracted.match(fileName);
    return match.hasMatch() && match.captured(1).toInt() != row;
}

QStringList extractedFiles(const QString &folder, int row)
{
    const QFileInfoList entries = QDir(folder).entryInfoList(
        QDir::Files | QDir::AllDirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::DirsFirst);
    QStringList paths;
    for (const QFileInfo &entry : entries) {
        if (!entry.isDir() && !wasExtractedForAnotherRow(entry.fileName(), row))
            paths += entry.absoluteFilePath();
    }
    return paths;
}

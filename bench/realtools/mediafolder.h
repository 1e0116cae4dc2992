// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <vector>

namespace bench
{

/// Media of four kinds, five seconds each and with timecode: a WAV file of one channel and one of eight, a
/// MOV file, and an MXF file with four sound tracks.
class MediaFolder
{
public:
    /// Makes one file of each kind. Throws Failure.
    MediaFolder();

    /// A folder with \a count files, the kinds in turn, each under a name of its own. The files of one kind
    /// are the same on disk.
    QString folderWith(int count);

    /// Absolute paths of the files in \a folder, in order of their names.
    static QStringList filesIn(const QString &folder);

    static constexpr int kinds = 4;

private:
    QTemporaryDir root;
    QStringList originals; ///< names, one for each kind
};

} // namespace bench

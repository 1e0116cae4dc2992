// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "ffmpeg/outputname.h"

#include <QString>
#include <QStringList>

#include <functional>

/// The command of one export.
namespace exportarguments
{

/// One run of the export tool, and what its progress is measured by.
struct ExportCommand {
    QStringList arguments;
    QString outputPath;            ///< the file that the run writes
    qint64 expectedOutputSize = 0; ///< [bytes per progress step]
};

/// The command that exports \a file, of \a inputFileSize [bytes], as \a options say, to a name for which
/// \a isTaken is false. What the probe or the timecode reader left out counts as false, 0 or empty.
ExportCommand build(const FileData &file, const ExportOptions &options, qint64 inputFileSize,
                    const std::function<bool(const QString &)> &isTaken);

/// The arguments that write the audio timecode of \a file as start timecode; none for a file without one.
QStringList timecode(const FileData &file, int videoType, outputname::Container container);

} // namespace exportarguments

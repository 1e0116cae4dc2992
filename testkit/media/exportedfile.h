// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What is read back from a written file.
struct ExportedFile {
    bool readable = false;               ///< the probe could read it
    QString timecode;                    ///< of the file or of its timecode track; empty = none
    std::optional<qint64> timeReference; ///< [samples since midnight] of a broadcast WAV
    int audioChannels = 0;               ///< of all audio streams together
};

/// Takes \a probeOutput, the JSON text of a probe with formats and streams, apart.
ExportedFile parseProbe(const QByteArray &probeOutput);

/// Reads the file \a path with the system's ffprobe.
ExportedFile readExportedFile(const QString &path);

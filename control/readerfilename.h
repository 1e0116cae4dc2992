// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// What the path of an extracted audio file, "<base name>_<stream>_<row>.wav", says about its origin.
struct ReaderFileName {
    int row = 0;           ///< row of the source file; 0 when the name holds no number there
    int audioStream = 0;   ///< index of the audio stream; 0 when the name holds no number there
    QString shortenedPath; ///< the path without "_<row>.wav"

    /// Takes \a filePath apart from its end; works with either platform's separators.
    static ReaderFileName parse(const QString &filePath);
};

/// Whether \a fileName, without folder, was extracted for another row than \a row. Files of one base name
/// share a folder. A name of any other form belongs to no row in particular.
bool wasExtractedForAnotherRow(const QString &fileName, int row);

/// Paths of the files in \a folder that were extracted for \a row, or for no row in particular.
QStringList extractedFiles(const QString &folder, int row);

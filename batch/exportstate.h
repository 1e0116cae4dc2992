// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// How the export of one row has come out.
struct ExportState {
    enum class Kind {
        NotAsked,   ///< nothing is exported, or the source has failed
        LeftOut,    ///< the file holds nothing but the timecode
        UnderWay,   ///< at the end of the run: not done
        Written,    ///< not checked, as was asked for
        Verified,   ///< checked, and proven
        Unverified, ///< checked, and found wanting
        Failed
    };

    Kind kind = Kind::NotAsked;
    QString path;     ///< of the new file; empty while there is none
    int exitCode = 0; ///< of the tool
    QString verdict;  ///< of the check, in words; empty where there was none
    QString start;    ///< read back from the new file: a timecode, or the number of a sample
};

/// Whether there is no new file, or one that was not proven, although that was asked for.
bool hasFailed(const ExportState &exported);

/// One or two words for people and reports; empty where nothing was asked for.
QString wordFor(const ExportState &exported);

/// Why there is no new file, for people; empty where there is one or none was asked for.
QString reasonFor(const ExportState &exported);

// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>

/// What came of searching the rest of a file that carries no timecode in its first seconds.
struct LaterFinding {
    enum class Kind {
        NotSearched, ///< not asked for, not needed, or given up
        Found,
        NotFound, ///< to the end of the file
        Failed    ///< a tool has failed: nothing is known of the rest
    };

    Kind kind = Kind::NotSearched;
    int second = -1;    ///< [s] from the file's beginning to that of the window with timecode; -1 = none
    int stream = -1;    ///< that carries it
    QJsonObject result; ///< of the reader, counted back to the file's first sample
    int exitCode = 0;   ///< of the failed tool, one of the result codes
    QString reason;     ///< why no timecode is known, for people; empty = no special one
};

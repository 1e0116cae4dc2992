// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/exportoptions.h"
#include "control/jobqueues.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <variant>

/// What one run of the program without a window is to do.
struct BatchOptions {
    bool isJoin = false; ///< the paths are reports to be joined; nothing is read or exported
    QStringList paths;   ///< files and folders, as dropped on the window
    QStringList reports; ///< files to be written at the end; their suffix says which kind
    std::optional<AudioTCOptions> reading;  ///< none = as the window's import reads
    std::optional<ExportOptions> exporting; ///< none = nothing is exported
    bool deep = false;     ///< files without timecode in their first seconds are searched to their end
    bool verifying = true; ///< new files are checked
    bool resuming = false; ///< what an earlier run has proven stays
    int jobs = JobQueues::maximumRunning; ///< tools that run together at most
    bool quiet = false;                   ///< neither table nor progress
};

/// The user asks for this text.
struct BatchAnswer {
    QString text;
};

/// The arguments are wrong.
struct BatchRefusal {
    QString reason; ///< one line for people
};

using BatchCommand = std::variant<BatchOptions, BatchAnswer, BatchRefusal>;

/// What is at a path.
enum class PathKind { Nothing, File, Folder };

/// Understands \a arguments, the program's name first. \a kindOf says what is at a path.
BatchCommand parseBatchCommand(const QStringList &arguments,
                               const std::function<PathKind(const QString &)> &kindOf);

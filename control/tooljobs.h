// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"
#include "app/records/filedata.h"
#include "control/exportbatch.h"

#include <QString>

#include <optional>

class MainControl;

/// Starts the tools' jobs: makes a handler, as a child of the controller, and connects its results. A tool
/// that cannot be started ends its job like one that fails.
namespace tooljobs
{

/// Probes \a file; its rowNumber comes back with the result.
void probe(MainControl *control, const FileData &file);

/// Extracts the audio of \a file into the existing \a folder.
void extract(MainControl *control, const FileData &file, const QString &folder);

/// Reads the timecode of the audio file \a path, as \a options say if there are any.
void read(MainControl *control, const QString &path, const std::optional<AudioTCOptions> &options,
          bool isGoPro);

/// Exports \a file as one of \a batch.
void exportFile(MainControl *control, const FileData &file, const ExportBatch &batch);

/// Kills all tools of \a control and deletes their handlers. No result of theirs comes any more.
void endAll(MainControl *control);

} // namespace tooljobs

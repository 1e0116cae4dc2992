// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "tests/fuzz/fuzzinput.h"

/// What holds for the argument lists of every record, for all that the probe and the reader can say.
namespace exportpromises
{

/// Takes the choices of one export: video type, audio type, mute, folder, progress steps.
ExportOptions takeOptions(fuzz::Input &input);

/// A record of a file whose name is the next line of \a input, in the folder "/card".
FileData takeFile(fuzz::Input &input);

/// Builds the export of \a file with \a options, where \a takenNames output names exist already (10,000 or
/// more: all), and requires of it: the input and the output are the only paths, no word is empty, streams are
/// those of the record, options and their values are words that the tool knows, a file that exists is not
/// written to, the timecode is that of the record. The tool adapter must know the list as an export.
void checkExport(const FileData &file, const ExportOptions &options, int takenNames);

/// The same for the extraction of the audio streams of \a file.
void checkExtraction(const FileData &file);

} // namespace exportpromises

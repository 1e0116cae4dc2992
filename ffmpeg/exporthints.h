// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"

#include <QProcessEnvironment>
#include <QString>

/// What the tool is given in addition to the arguments of an export or an extraction, since these cannot say
/// it: environment variables whose names begin with "OSTREL_".
namespace exporthints
{

/// Where the timecode to be left out of the export sits, as "stream.channel"; empty when none is to be left
/// out or the place is not known. In two-channel material the arguments name the other channel.
QString mutedChannel(const FileData &file, const ExportOptions &options);

/// The rate [frames per second] at which the audio timecode of \a file counts, as a fraction such as
/// "30000/1001"; empty when it is not known. The arguments name it for some video types only.
QString timecodeRate(const FileData &file);

/// What \a options choose for the picture: "pass", "mpeg2", or the DNxHD family by its lowest data rate,
/// "dnxhd-36", "dnxhd-115" or "dnxhd-175". At some frame rates the arguments name none.
QString pictureChoice(const ExportOptions &options);

/// What \a options choose for the sound: "pass", "pcm16" or "pcm24". The arguments name codecs, which do not
/// distinguish a choice from a codec that happens to be the source's.
QString soundChoice(const ExportOptions &options);

/// The rate [samples per second] at which the audio timecode of \a file counts its samples where that is
/// another file's: it was taken over from a sibling. Empty for a timecode of its own.
QString timecodeSampleRate(const FileData &file);

/// What the import has learnt of \a file, in the probe tool's own words: one line "key=value" for each fact,
/// each stream begun by its "index", the file as a whole by "[FORMAT]". Saves the tool a probe of its own.
/// Empty where nothing is known, and where there is more than an environment variable can hold.
QString sourceDescription(const FileData &file);

/// Sets the variable that describes \a file in \a environment: all that an extraction needs. One that is
/// there already never stays.
void insertSource(QProcessEnvironment &environment, const FileData &file);

/// Sets the variables for the export of \a file with \a options, one of \a batchSize (0 = not known) that run
/// together, in \a environment. One of them that is there already never stays.
void insertInto(QProcessEnvironment &environment, const FileData &file, const ExportOptions &options,
                int batchSize = 0);

} // namespace exporthints

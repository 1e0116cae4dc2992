// SPDX-License-Identifier: MIT

// What the probe tool prints, on its way to the record, to the table's cells and to the argument lists.
//
// Input: five choices of an export, two of the timecode's place, one of the names that are taken, the name of
// the file as a line, then the JSON text.

#include "app/windowtexts.h"
#include "control/probedrecord.h"
#include "filelist/celltexts.h"
#include "tests/fuzz/exportpromises.h"

#include <QJsonDocument>

#include <array>
#include <cmath>

using fuzz::require;

namespace
{

/// \a probed with the names that the table gave it.
FileData joined(FileData probed, const FileData &named)
{
    probed.fileName = named.fileName;
    probed.baseName = named.baseName;
    probed.suffix = named.suffix;
    probed.absoluteFilePath = named.absoluteFilePath;
    probed.rowNumber = 7;
    return probed;
}

void giveTimecode(FileData &file, int stream, int channel)
{
    if (stream >= file.audioStreamMap.size())
        return;
    file.setAudioTC("10:00:00:00", {static_cast<uchar>(file.audioStreamMap.at(stream)), channel});
    file.hasAudioTC = true;
    file.audioTCResult = {{"Timecode", "10:00:00:00"},
                          {"FrameRateFound", 25.0},
                          {"FrameRateBaseFound", 25},
                          {"SamplesSinceMidnight", 1'728'000'000}};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const ExportOptions options = exportpromises::takeOptions(input);
    const int stream = input.choice(4);
    const int channel = input.choice(8);
    const int takenNames = std::array{0, 1, 2, 20}.at(static_cast<std::size_t>(input.choice(4)));
    const FileData named = exportpromises::takeFile(input);

    const QJsonObject json = QJsonDocument::fromJson(input.rest()).object();
    FileData file = joined(probedRecord(json), named);
    require(std::isfinite(file.duration), "a duration is a number");
    require(file.hasFileTC || file.fileTC.isEmpty(), "a file timecode has its flag");
    require(file.audioChannelCount >= 0, "a number of channels is none below zero");
    celltexts::duration(file.duration);
    windowtexts::streamLines(file);

    exportpromises::checkExtraction(file);
    giveTimecode(file, stream, channel);
    exportpromises::checkExport(file, options, takenNames);
    return 0;
}

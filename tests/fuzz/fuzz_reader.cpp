// SPDX-License-Identifier: MIT

// What the timecode reader prints, on its way to the table's cells and to the export.
//
// Input: five choices of an export, the stream that was read, then the JSON text.

#include "filelist/celltexts.h"
#include "testkit/fixtures/samplerecords.h"
#include "tests/fuzz/exportpromises.h"

#include <QJsonDocument>

using fuzz::require;

namespace
{

FileData source(int kind)
{
    using samplerecords::sound;
    switch (kind) {
    case 0:
        return samplerecords::mediaFile("/card/take.WAV", {sound("pcm_s24le", 8)});
    case 1:
        return samplerecords::mediaFile("/card/clip.MOV", {sound("pcm_s16be", 2, "stereo"), sound("aac", 1)});
    default:
        return samplerecords::mediaFile("/card/clip.mxf", {sound("pcm_s24le", 1), sound("pcm_s24le", 1)});
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const ExportOptions options = exportpromises::takeOptions(input);
    FileData file = source(input.choice(3));
    const int stream = input.choice(4) - 1; // none, audio, picture, and one that does not exist
    const QJsonObject result = QJsonDocument::fromJson(input.rest()).object();

    const QString timecode = result["Timecode"].toString();
    file.setAudioTC(timecode, {stream, result["ChannelFound"].toInt()});
    file.audioTCResult = result;
    file.hasAudioTC = !timecode.isEmpty();
    require(celltexts::audioTimecode(result).startsWith(timecode + '@'), "the cell shows the timecode");
    celltexts::audioTimecodeToolTip(file);
    exportpromises::checkExport(file, options, 1);

    FileData sibling = samplerecords::mediaFile("/card/other.wav", {samplerecords::sound("pcm_s24le", 2)});
    sibling.setLinkedAudioTC(3, file.audioTC, file.audioTCResult);
    if (!timecode.isEmpty())
        exportpromises::checkExport(sibling, options, 1);
    celltexts::linkedTimecodeToolTip(sibling.audioTCResult, file.fileName);
    return 0;
}

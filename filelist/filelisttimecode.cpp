// SPDX-License-Identifier: MIT
// What the file table does with the timecodes that the reader found, or did not find.
#include "filelist/celltexts.h"
#include "filelist/filelist.h"
#include "filelist/tablecolumns.h"
#include "ltc/readererrors.h"

namespace
{

constexpr int timecodeFound = 0;
constexpr int timecodeNotFound = 205;

} // namespace

void FileList::onAudioTCReadReturn(QJsonObject ltcResultJson, int fileNumber, int audioTCStreamIndex,
                                   int exitCode)
{
    if (!hasRecord(fileNumber))
        return;
    const FileData &record = fileDataVector.at(fileNumber);
    // A file with several streams gets several results; the first timecode stays.
    if (record.hasAudioTC && !record.audioTCPending)
        return;
    if (exitCode == timecodeFound)
        showTimecode(fileNumber, ltcResultJson, audioTCStreamIndex);
    else if (exitCode == timecodeNotFound)
        showNoTimecode(fileNumber);
    else
        showFailedRead(fileNumber, exitCode);
}

/// The record keeps what it had; where that is a timecode, the cell says in its tool tip that it is kept.
void FileList::showFailedRead(int row, int exitCode)
{
    const FileData &record = fileDataVector.at(row);
    showText(row, AudioTCColumn, readerErrorText(exitCode),
             record.hasAudioTC ? celltexts::keptTimecodeToolTip(record.audioTC) : QString());
}

void FileList::showNoTimecode(int row)
{
    const QVector<int> siblings = linkIndex.siblings(fileDataVector, row);
    // Of several siblings with a timecode the last one wins.
    for (auto sibling = siblings.crbegin(); sibling != siblings.crend(); ++sibling) {
        if (fileDataVector.at(*sibling).hasAudioTC) {
            linkRow(row, *sibling);
            break;
        }
    }
    FileData &record = fileDataVector[row];
    if (record.audioTCLinked)
        return;
    // The table says that there is none, so an export must not write an earlier one.
    record.hasAudioTC = false;
    showText(row, AudioTCColumn, tr("audio TC not found"));
    fitColumn(AudioTCColumn);
}

void FileList::showTimecode(int row, const QJsonObject &result, int streamIndex)
{
    FileData &record = fileDataVector[row];
    const QString timecode = result.value("Timecode").toString();
    record.setAudioTC(timecode, {streamIndex, result.value("ChannelFound").toInt()});
    record.audioTCResult = result;
    record.audioTCPending = false;

    showText(row, AudioTCColumn, celltexts::audioTimecode(result), celltexts::audioTimecodeToolTip(record));
    fitColumn(AudioTCColumn);

    for (const int sibling : linkIndex.siblings(fileDataVector, row))
        linkRow(sibling, row);
    if (!timecode.isEmpty())
        fileDataVector[row].hasAudioTC = true;
}

void FileList::linkRow(int row, int sourceRow)
{
    FileData &record = fileDataVector[row];
    const FileData &source = fileDataVector.at(sourceRow);
    record.setLinkedAudioTC(sourceRow, source.audioTC, source.audioTCResult);
    showText(row, AudioTCColumn, celltexts::linkedTimecode(source.audioTC),
             celltexts::linkedTimecodeToolTip(record, source));
}

// SPDX-License-Identifier: MIT
// What the file table does with the timecodes that the reader found, or did not find.
#include "filelist/celltexts.h"
#include "filelist/filelist.h"
#include "filelist/linkeditem.h"
#include "filelist/linking.h"
#include "filelist/tablecolumns.h"
#include "ltc/readererrors.h"

#include <QSignalBlocker>

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

/// The record of \a row with what it has taken over from a sibling.
FileData &FileList::currentRecord(int row)
{
    FileData &record = fileDataVector[row];
    if (const auto shared = siblingLinks.linkOf(row)) {
        const Link &link = *shared->latest;
        record.setLinkedAudioTC(link.sourceRow, link.timecode, link.result);
    }
    return record;
}

void FileList::setHasAudioTC(int row, bool hasAudioTC)
{
    fileDataVector[row].hasAudioTC = hasAudioTC;
    siblingLinks.setHasTimecode(row, hasAudioTC);
}

/// Shows what is the row's own, or at least no sibling changes.
void FileList::showOwnAudioTC(int row, const QString &text, const QString &toolTip)
{
    currentRecord(row); // keeps what it has taken over so far
    siblingLinks.leave(row);
    showText(row, AudioTCColumn, text, toolTip);
}

/// The record keeps what it had; where that is a timecode, the cell says in its tool tip that it is kept.
void FileList::showFailedRead(int row, int exitCode)
{
    const FileData &record = currentRecord(row);
    showOwnAudioTC(row, readerErrorText(exitCode),
                   record.hasAudioTC ? celltexts::keptTimecodeToolTip(record.audioTC) : QString());
}

void FileList::showNoTimecode(int row)
{
    // Of several siblings with a timecode the last one wins.
    const int source = siblingLinks.lastRowWithTimecode(row);
    if (source >= 0)
        linkRow(row, source);
    if (fileDataVector.at(row).audioTCLinked)
        return;
    // The table says that there is none, so an export must not write an earlier one.
    setHasAudioTC(row, false);
    showOwnAudioTC(row, tr("audio TC not found"));
    fitColumn(AudioTCColumn);
}

void FileList::showTimecode(int row, const QJsonObject &result, int streamIndex)
{
    FileData &record = currentRecord(row);
    const QString timecode = result.value("Timecode").toString();
    siblingLinks.leave(row);
    record.setAudioTC(timecode, {streamIndex, result.value("ChannelFound").toInt()});
    record.audioTCResult = result;
    record.audioTCPending = false;

    showText(row, AudioTCColumn, celltexts::audioTimecode(result), celltexts::audioTimecodeToolTip(record));
    fitColumn(AudioTCColumn);
    linkSiblings(row);
    setHasAudioTC(row, !timecode.isEmpty());
}

void FileList::linkRow(int row, int sourceRow)
{
    const FileData &source = currentRecord(sourceRow);
    FileData &record = fileDataVector[row];
    showOwnAudioTC(row, celltexts::linkedTimecode(source.audioTC),
                   celltexts::linkedTimecodeToolTip(source.audioTCResult, source.fileName));
    record.setLinkedAudioTC(sourceRow, source.audioTC, linking::passedOnResult(source));
    setHasAudioTC(row, !source.audioTC.isEmpty()); // an export would write an empty one as midnight
}

/// Passes the timecode of \a sourceRow on to all its siblings. Cells that follow a link already show the new
/// one by themselves.
void FileList::linkSiblings(int sourceRow)
{
    if (!siblingLinks.mayHaveSiblings(sourceRow))
        return;
    const FileData &source = fileDataVector.at(sourceRow);
    if (source.audioTC.isEmpty()) { // they show it, but have no timecode that they could pass on
        for (int row = 0; row < fileDataVector.size(); ++row) {
            if (row != sourceRow && linking::recordedTogether(source, fileDataVector.at(row)))
                linkRow(row, sourceRow);
        }
        return;
    }
    const Link link{sourceRow, source.fileName, source.audioTC, linking::passedOnResult(source),
                    widthOf(celltexts::linkedTimecode(source.audioTC))};
    const SiblingLinks::PassedOn passedOn = siblingLinks.passOn(sourceRow, link);
    {
        const QSignalBlocker noChangeOfCells(model());
        for (const int row : passedOn.newFollowers) {
            fileDataVector[row].audioTCLinked = true;
            fileDataVector[row].hasAudioTC = true;
            setItem(row, AudioTCColumn, new LinkedItem(siblingLinks.linkOf(row)));
            cellWidths[AudioTCColumn].set(row, 0); // its width is that of the link
        }
    }
    if (passedOn.hasFollowers && !linkedCellsTimer.isActive())
        linkedCellsTimer.start();
}

/// Has all cells painted that follow a link. Not at each link: results may come faster than anybody can look.
void FileList::announceLinkedCells()
{
    if (rowCount() > 0)
        emit model()->dataChanged(model()->index(0, AudioTCColumn),
                                  model()->index(rowCount() - 1, AudioTCColumn));
}

/// What \a row has taken over stays with it from now on, in its record and its cell.
void FileList::leaveLink(int row)
{
    const auto shared = siblingLinks.linkOf(row);
    if (!shared)
        return;
    const Link &link = *shared->latest;
    showOwnAudioTC(row, celltexts::linkedTimecode(link.timecode),
                   celltexts::linkedTimecodeToolTip(link.result, link.sourceName));
}

/// The same for all rows at once, before \a gone, ascending, leave the table. The cells keep showing the
/// links, which nobody changes any more.
void FileList::leaveAllLinks(const QVector<int> &gone)
{
    for (int row = 0; row < fileDataVector.size(); ++row) {
        if (const auto shared = siblingLinks.linkOf(row)) {
            currentRecord(row);
            cellWidths[AudioTCColumn].set(row, shared->latest->cellWidth);
        }
    }
    siblingLinks.rebuildWithout(gone);
}

// SPDX-License-Identifier: MIT
#include "filelist/importedfiles.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{

constexpr int timecodeFound = 0;
constexpr int timecodeNotFound = 205;

/// Times that compare equal count the same milliseconds.
qint64 momentOf(const FileData &file)
{
    return file.lastModified.toMSecsSinceEpoch();
}

} // namespace

ImportedFiles::ImportedFiles()
{
    constexpr int expectedFiles = 20;
    fileDataVector.reserve(expectedFiles);
}

QVector<int> ImportedFiles::allRows() const
{
    QVector<int> rows(count());
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

int ImportedFiles::add(const QFileInfo &file)
{
    FileData record;
    record.fileName = file.fileName();
    record.absoluteFilePath = file.absoluteFilePath();
    record.baseName = file.baseName();
    record.lastModified = file.lastModified();
    record.suffix = file.suffix();
    fileDataVector.append(record);
    statuses.append(RowStatus());
    indexRow(count() - 1);
    return count() - 1;
}

ImportedFiles::Changes ImportedFiles::takeProbe(const FileData &probed, int row, int exitCode)
{
    if (!contains(row))
        return {};
    FileData &record = fileDataVector[row];
    RowStatus &status = statuses[row];
    if (!probed.fileTC.isEmpty())
        record.setFileTC(probed.fileTC);
    status.fileTC = probed.fileTC.isEmpty() ? RowStatus::FileTC::NotFound : RowStatus::FileTC::Found;
    if (exitCode != 0) {
        status.audioTC = RowStatus::AudioTC::ProbeFailed;
        status.exitCode = exitCode;
        return {row, true, false, true, {}};
    }
    record.duration = probed.duration;
    record.format = probed.format;
    record.audioStreams = probed.audioStreams;
    record.streams = probed.streams;
    record.isGoPro = probed.isGoPro;
    record.audioStreamMap = probed.audioStreamMap;
    record.mainStream = probed.mainStream;
    record.audioChannelCount = probed.audioChannelCount;
    record.timeReference = probed.timeReference;
    return {row, true, true, false, {}};
}

ImportedFiles::Changes ImportedFiles::takeReading(const QJsonObject &result, int row, int streamIndex,
                                                  int exitCode)
{
    if (!contains(row))
        return {};
    // A file with several streams gets several results; the first timecode stays.
    if (record(row).hasAudioTC && !record(row).audioTCPending)
        return {};
    Changes changes{row, false, false, true, {}};
    if (exitCode == timecodeFound) {
        takeTimecode(result, streamIndex, changes);
    } else if (exitCode == timecodeNotFound) {
        takeNoTimecode(changes);
    } else {
        statuses[row].audioTC = RowStatus::AudioTC::ReadFailed;
        statuses[row].exitCode = exitCode;
    }
    return changes;
}

void ImportedFiles::takeTimecode(const QJsonObject &result, int streamIndex, Changes &changes)
{
    FileData &record = fileDataVector[changes.row];
    const QString timecode = result.value("Timecode").toString();
    record.setAudioTC(timecode, {streamIndex, result.value("ChannelFound").toInt()});
    record.audioTCResult = result;
    record.audioTCPending = false;
    statuses[changes.row].audioTC = RowStatus::AudioTC::Found;

    const QVector<int> rows = rowsOfMoment(record);
    if (rows.size() > 1) {
        const linking::Link passedOn = linking::linkTo(record, changes.row);
        for (const int row : rows) {
            if (row == changes.row || !linking::areClose(record.duration, fileDataVector.at(row).duration))
                continue;
            link(row, passedOn);
            changes.linkedRows += row;
        }
    }
    record.hasAudioTC = !timecode.isEmpty();
}

void ImportedFiles::takeNoTimecode(Changes &changes)
{
    FileData &record = fileDataVector[changes.row];
    const QVector<int> rows = rowsOfMoment(record);
    // Of several siblings with a timecode the last one wins.
    const auto source = std::find_if(rows.crbegin(), rows.crend(), [&](int row) {
        const FileData &other = fileDataVector.at(row);
        return row != changes.row && other.hasAudioTC && linking::recordedTogether(record, other);
    });
    if (source != rows.crend()) {
        link(changes.row, linking::linkTo(fileDataVector.at(*source), *source));
    } else if (record.audioTCLinked) {
        changes = {};
    } else {
        // The table says that there is none, so an export must not write an earlier one.
        record.hasAudioTC = false;
        statuses[changes.row].audioTC = RowStatus::AudioTC::NotFound;
    }
}

void ImportedFiles::link(int row, const linking::Link &link)
{
    FileData &record = fileDataVector[row];
    record.setLinkedAudioTC(link.sourceRow, link.timecode, link.result);
    record.hasAudioTC = !link.timecode.isEmpty(); // an export would write an empty one as midnight
    statuses[row].audioTC = RowStatus::AudioTC::Linked;
    statuses[row].sourceName = link.sourceName;
}

QVector<FileData> ImportedFiles::takeForReading(const QVector<int> &rows)
{
    QVector<FileData> files;
    files.reserve(count());
    for (const int row : rows) {
        FileData &record = fileDataVector[row];
        record.rowNumber = row;
        record.audioTCPending = true;
        files.append(record);
    }
    if (!files.isEmpty())
        work.askReading();
    return files;
}

QVector<FileData> ImportedFiles::takeForExport(const QVector<int> &rows, const ExportOptions &options)
{
    QVector<FileData> files;
    files.reserve(count());
    for (const int row : rows) {
        FileData &record = fileDataVector[row];
        record.rowNumber = row;
        // A sound file that holds nothing but the timecode would come out empty.
        const bool onlyTimecode = linking::isWave(record) && record.hasAudioTC && !record.audioTCLinked &&
                                  record.audioChannelCount < 2;
        if (!options.muteAudioTC || !onlyTimecode)
            files.append(record);
    }
    return files;
}

bool ImportedFiles::remove(const QVector<int> &rows)
{
    if (work.isImporting() || rows.isEmpty())
        return false;
    int kept = rows.first();
    auto next = rows.cbegin();
    for (int row = kept; row < count(); ++row) {
        if (next != rows.cend() && *next == row) {
            ++next;
            continue;
        }
        std::swap(fileDataVector[kept], fileDataVector[row]);
        std::swap(statuses[kept++], statuses[row]);
    }
    fileDataVector.resize(kept);
    statuses.resize(kept);
    soundRows.clear();
    for (int row = 0; row < count(); ++row)
        indexRow(row);
    return true;
}

QVector<int> ImportedFiles::rowsOfMoment(const FileData &file) const
{
    return linking::isWave(file) ? soundRows.value(momentOf(file)) : QVector<int>();
}

void ImportedFiles::indexRow(int row)
{
    if (linking::isWave(record(row)))
        soundRows[momentOf(record(row))] += row;
}

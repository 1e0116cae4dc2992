// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"
#include "filelist/importedfiles.h"

#include <QJsonObject>
#include <QString>

/// What the cells of the file table show, made from the values behind them.
namespace celltexts
{

/// "HH:MM:SS" of \a seconds, rounded to the nearest whole second, halves to the even one. Hours take as many
/// digits as they need. What is no finite number shows as zero.
QString duration(double seconds);

/// Frames per second that the reader's \a result stands for: under "NTSC" the nominal rate x 1000 / 1001.
double frameRate(const QJsonObject &result);

/// "10:00:00:00@25.00 on ch. 1": timecode, rate, " DF " for drop-frame NTSC, channel counted from 1.
QString audioTimecode(const QJsonObject &result);

/// "10:00:00:00@(linked)": a timecode taken over from a file that was recorded together with this one.
QString linkedTimecode(const QString &timecode);

/// Tool tip of a timecode that was read: what the reader knows about it, a line each.
QString audioTimecodeToolTip(const FileData &file);

/// Tool tip of a linked timecode: the same of \a result, after the name \a source of the file that it was
/// taken from.
QString linkedTimecodeToolTip(const QJsonObject &result, const QString &source);

/// Tool tip of a failed second reading: the earlier \a timecode stays the one that an export writes.
QString keptTimecodeToolTip(const QString &timecode);

/// The File TC cell of \a file, of which \a status is known; \a initText before it was probed.
QString fileTC(const FileData &file, const RowStatus &status, const QString &initText);

/// The Audio TC cell of \a file, of which \a status is known; \a initText before it was read.
QString audioTC(const FileData &file, const RowStatus &status, const QString &initText);

/// Tool tip of that cell; empty = none.
QString audioTCToolTip(const FileData &file, const RowStatus &status);

} // namespace celltexts

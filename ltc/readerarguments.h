// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/audiotcoptions.h"

#include <QStringList>

/// Argument lists of the timecode reader.
namespace readerarguments
{

/// Arguments that read \a filePath with everything found by the reader itself; recordings of a GoPro camera
/// (\a isGoPro) are always read by their slopes.
QStringList automatic(const QString &filePath, bool isGoPro);

/// Arguments that read \a filePath as the user chose. What \a options leaves automatic (channel or frame rate
/// below 0, algorithm 0) goes as in automatic(); an algorithm beyond the known ones counts as no choice at
/// all.
QStringList chosen(const QString &filePath, const AudioTCOptions &options, bool isGoPro);

} // namespace readerarguments

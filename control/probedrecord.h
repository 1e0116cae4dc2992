// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/filedata.h"

#include <QJsonObject>

/// The record of a media file as the probe tool describes it in \a probeJson, with "format" and "streams".
///
/// Fills what the probe knows: fileTC, timeReference, audioStreamMap, audioChannelCount, mainStream,
/// audioStreams, streams, format, duration and isGoPro. What is missing or of another type than expected
/// leaves its default.
FileData probedRecord(const QJsonObject &probeJson);

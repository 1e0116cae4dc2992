// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/exportoptions.h"
#include "app/records/filedata.h"
#include "ffmpeg/outputname.h"

#include <QJsonObject>
#include <QStringList>

/// Which sound an export carries over, and in which codec.
namespace audiomapping
{

/// A channel of one of a file's streams.
struct Channel {
    int stream = -1;  ///< index in the file's streams; -1 = none
    int channel = -1; ///< counted from 0; -1 = none
};

/// The channel that an export without the timecode names as singled out. In two-channel material that is the
/// *other* channel of the pair, which the export tool takes in that sense.
Channel singledOut(const FileData &file);

/// Name of the codec that \a audioType (code of audioTypes, not 0) writes.
QString codecOf(int audioType);

/// Name of the codec that takes over \a audioStream as it is: its own when it is a listed one, \a otherwise
/// when it is not.
QString keptCodec(const QJsonObject &audioStream, const QString &otherwise);

/// The arguments that choose streams, channels and codecs.
QStringList arguments(const FileData &file, const ExportOptions &options, outputname::Container container);

} // namespace audiomapping

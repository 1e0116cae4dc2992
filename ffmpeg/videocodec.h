// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

/// What the video types of the export dialog mean to the export tool.
namespace videocodec
{

/// How the picture of one export is written.
struct VideoCodec {
    QStringList arguments; ///< empty: the tool's own choice for the container
    float bitRate = 0.0F;  ///< [bit/s] for the estimate of the output size
    bool copied = false;   ///< the picture is taken over as it is
};

/// Whole frames per second of a video stream: its "r_frame_rate", a fraction, cut to an integer. 0 when it is
/// no fraction with a denominator above 0.
int frameRateClass(const QJsonObject &videoStream);

/// The codec that \a videoType (code of exportTypes) writes \a videoStream with.
VideoCodec forType(int videoType, const QJsonObject &videoStream);

/// A name of \a videoType for the tool, "pass", "mpeg2", or "dnxhd-" and the lowest data rate [Mbit/s] of the
/// family; empty for a code of no type.
QString nameOf(int videoType);

/// True for the types that keep or leave open the frame rate; the DNxHD types set one of their own.
bool leavesFrameRateOpen(int videoType);

} // namespace videocodec

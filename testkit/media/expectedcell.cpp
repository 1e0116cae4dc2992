// SPDX-License-Identifier: MIT
#include "testkit/media/expectedcell.h"

namespace mediakit
{

namespace
{

// Channel that carries the timecode, counted from 1 in its track; 0 = none of this file.
int channelWithTimecode(const Recording &recording)
{
    for (const Track &track : recording.tracks) {
        for (int i = 0; i < track.size(); ++i) {
            if (track.at(i).timecode)
                return i + 1;
        }
    }
    return 0;
}

QString shownRate(testsignals::LtcRate rate)
{
    const QString text = QString::number(testsignals::framesPerSecond(rate), 'f', 2);
    return rate.dropFrame ? text + " DF " : text;
}

} // namespace

QString expectedAudioTC(const Recording &recording)
{
    if (recording.broken)
        return "error while reading file data";
    const std::optional<testsignals::LtcSignal> signal = timecodeOf(recording);
    if (!signal)
        return "audio TC not found";

    const testsignals::LtcTime start = testsignals::startTime(*signal);
    const QString timecode = QString::fromStdString(testsignals::text(start, signal->rate));
    if (recording.siblingTimecode)
        return timecode + "@(linked)";
    return QString("%1@%2 on ch. %3")
        .arg(timecode, shownRate(signal->rate), QString::number(channelWithTimecode(recording)));
}

} // namespace mediakit

// SPDX-License-Identifier: MIT
#include "testkit/media/shootday.h"

#include <QTimeZone>

namespace mediakit
{

namespace
{

using testsignals::LtcRate;
using testsignals::LtcTime;

constexpr LtcRate rate2398{24, true, false};
constexpr LtcRate rate24{24, false, false};
constexpr LtcRate rate25{25, false, false};
constexpr LtcRate rate2997{30, true, false};
constexpr LtcRate rate2997Drop{30, true, true};
constexpr LtcRate rate30{30, false, false};

// Timecode on the second of two channels, as a camera records it from a timecode box.
QVector<Track> stereo(LtcTime start, LtcRate rate)
{
    return {{toneChannel(440), timecodeChannel(start, rate)}};
}

QVector<Recording> cameraFiles()
{
    const Channel tracksTimecode = timecodeChannel({18, 0, 0, 24}, rate25);
    QVector<Recording> files{
        movie("CAMERA-A/A001_23976.mov", "24000/1001", "pcm_s16le", stereo({10, 11, 12, 13}, rate2398)),
        movie("CAMERA-A/A002_24.mov", "24", "pcm_s16le", stereo({11, 59, 59, 23}, rate24)),
        movie("CAMERA-A/A003_25.mov", "25", "pcm_s24le", stereo({12, 30, 0, 0}, rate25)),
        movie("CAMERA-A/A004_2997_drop.mov", "30000/1001", "pcm_s16le",
              stereo({13, 9, 59, 28}, rate2997Drop)),
        movie("CAMERA-A/A005_2997.mov", "30000/1001", "pcm_s16le", stereo({14, 0, 0, 1}, rate2997)),
        movie("CAMERA-A/A006_30.mov", "30", "pcm_s16le", stereo({15, 15, 15, 15}, rate30)),
        movie("CAMERA-A/A007_four_channels.mov", "25", "pcm_s24le",
              {{toneChannel(440), toneChannel(660), toneChannel(880),
                timecodeChannel({16, 20, 0, 7}, rate25)}}),
        movie("CAMERA-B/B001_aac.mp4", "25", "aac",
              {{timecodeChannel({17, 0, 0, 5}, rate25), toneChannel(440)}}),
        movie("CAMERA-B/B002_ac3.mts", "25", "ac3", stereo({17, 45, 10, 0}, rate25)),
        movie("CAMERA-C/C001_four_tracks.mxf", "25", "pcm_s24le",
              {{toneChannel(440)}, {toneChannel(660)}, {toneChannel(880)}, {tracksTimecode}}),
        movie("CAMERA-C/C002_no_timecode.mov", "25", "pcm_s16le", {{toneChannel(440), toneChannel(660)}}),
    };
    Recording broken;
    broken.path = "CAMERA-C/C003_broken.mov";
    broken.broken = true;
    return files << broken;
}

QVector<Recording> soundFiles()
{
    const Recording withTimecode = soundFile("SOUND/T003_pair_timecode.wav",
                                             {toneChannel(440), timecodeChannel({21, 5, 0, 0}, rate25)}, 6.5);
    Recording partner = soundFile("SOUND/T003_pair_boom.wav", {toneChannel(660), toneChannel(880)}, 6.5);
    partner.siblingTimecode = timecodeOf(withTimecode);
    return {
        soundFile("SOUND/T001_mono.wav", {timecodeChannel({19, 0, 0, 0}, rate2398)}, 4.0),
        soundFile(
            "SOUND/T002_polyphonic.wav",
            {toneChannel(440), toneChannel(660), timecodeChannel({20, 0, 0, 12}, rate25), toneChannel(880)},
            5.5),
        withTimecode,
        partner,
    };
}

} // namespace

QVector<Recording> shootDay()
{
    QVector<Recording> recordings = cameraFiles() + soundFiles();
    // One file a minute; the pair was recorded together.
    const QDateTime firstFile(QDate(2024, 5, 3), QTime(9, 0), QTimeZone::utc());
    for (int i = 0; i < recordings.size(); ++i) {
        const bool partner = recordings.at(i).siblingTimecode.has_value();
        recordings[i].modified = firstFile.addSecs((partner ? i - 1 : i) * 60LL);
    }
    return recordings;
}

} // namespace mediakit

// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/signals/ltcsignal.h"

#include <QDateTime>
#include <QString>
#include <QVector>

#include <cstdint>
#include <optional>

/// Camera and sound files made on the spot, with known timecode in known channels.
namespace mediakit
{

/// What happened to the timecode on its way into the recording.
enum class Damage {
    None,
    Clipped,   ///< far too loud for the input
    Spikes,    ///< only the edges came through, as behind a thin transformer or a microphone adapter
    StartsLate ///< silence before the timecode, half of the first three seconds
};

/// What one audio channel carries: timecode, or a tone, or nothing.
struct Channel {
    std::optional<testsignals::LtcSignal> timecode; ///< its sample rate and duration are the recording's
    double tone = 0.0;                              ///< [Hz]; 0 = no tone
    Damage damage = Damage::None;
    double silence = 0.0;    ///< [s] before the timecode
    std::int64_t frozen = 0; ///< [frames] for which the first label stands still before it counts up
};

/// Channel with the timecode that starts at \a start. \a level in dBFS.
Channel timecodeChannel(testsignals::LtcTime start, testsignals::LtcRate rate, double level = -12.0,
                        Damage damage = Damage::None);

/// Channel with a tone of \a frequency [Hz], as programme sound.
Channel toneChannel(double frequency);

using Track = QVector<Channel>;

/// One file to be made.
struct Recording {
    QString path;        ///< relative to the kit's folder, with the suffix that decides on the container
    QString pictureRate; ///< [frames per second] as a fraction, "30000/1001"; empty = sound only
    QString audioCodec;  ///< the transcoding tool's name of it; WAV files are PCM 24 bit
    QVector<Track> tracks;
    QDateTime modified;     ///< modification time that the file gets
    double duration = 5.0;  ///< [s]
    int sampleRate = 48000; ///< [Hz]
    bool broken = false;    ///< the file ends in mid-header

    /// Timecode of a file that was recorded together with this one; set only where this one has none itself.
    std::optional<testsignals::LtcSignal> siblingTimecode;
};

/// Camera file with pictures of \a pictureRate and sound in \a audioCodec.
Recording movie(const QString &path, const QString &pictureRate, const QString &audioCodec,
                const QVector<Track> &tracks);

/// WAV file of \a duration [s].
Recording soundFile(const QString &path, const Track &track, double duration);

/// The timecode that an export of \a recording has to carry, at the recording's sample rate; none = no
/// timecode.
std::optional<testsignals::LtcSignal> timecodeOf(const Recording &recording);

/// True when the recording is a sound file of one channel, and that is timecode: nothing is left to export
/// when the timecode is muted.
bool isTimecodeAlone(const Recording &recording);

/// True for WAV files.
bool isSoundFile(const Recording &recording);

} // namespace mediakit

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/sourcefile.h"

/// What lists of sources are put together from.
namespace exportmatrix::sourceparts
{

constexpr testsignals::LtcRate at25{25, false, false};
constexpr testsignals::LtcRate at24{24, false, false};
constexpr testsignals::LtcRate at23976{24, true, false};
constexpr testsignals::LtcRate at2997{30, true, false};
constexpr testsignals::LtcRate at2997Drop{30, true, true};
constexpr testsignals::LtcRate at30{30, false, false};

/// \a count channels; number \a timecode (from 0, -1 = none) carries timecode, every other one a tone of its
/// own, the first of them number \a firstTone of the tones.
mediakit::Track channels(int count, int timecode, testsignals::LtcRate rate = at25, int firstTone = 0);

/// \a count streams of one channel; number \a timecode carries timecode.
QVector<mediakit::Track> single(int count, int timecode, testsignals::LtcRate rate = at25);

/// Options for a stream of \a codec.
QStringList coded(const QString &codec);

/// PCM without a channel layout, as recorders write it.
QStringList withoutLayout(const QString &codec, int count);

/// A file called \a name with pictures of \a rate, and \a tracks that are all coded with \a audio.
SourceFile movie(const QString &name, const QString &rate, const QVector<mediakit::Track> &tracks,
                 const QStringList &audio, bool isCore = false);

/// A WAV file called \a name.
SourceFile sound(const QString &name, const mediakit::Track &track, const QStringList &audio,
                 bool isCore = false);

} // namespace exportmatrix::sourceparts

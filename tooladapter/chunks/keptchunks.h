// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/chunks/wavefacts.h"
#include "tooladapter/chunks/wavelayout.h"

#include <optional>
#include <string>

namespace tooladapter
{

/// What brings the chunks of \a source, a WAV file, into \a written, which the tool has made of it with \a
/// changes: "bext", iXML, further metadata, cue points and their labels. Holds at most 16 MiB of chunks in
/// memory; those beyond are left out, as are damaged ones. Nothing if there is nothing to bring, and for
/// files that are not WAV.
std::optional<Rewriting> rewritingWithChunksOf(const Bytes &source, const Bytes &written,
                                               const WaveChanges &changes);

/// Brings the chunks of the file at \a source into the one at \a written; none if \a source cannot be opened.
/// Throws Refusal or std::system_error where reading or writing fails; the file at \a written is then without
/// the chunks.
void keepChunks(const std::string &source, const std::string &written, const WaveChanges &changes);

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/argumentlist.h"
#include "tooladapter/rules/hints.h"
#include "tooladapter/rules/source.h"

#include <optional>
#include <string>
#include <vector>

namespace tooladapter
{

/// The kind of file that is written, by its suffix.
enum class Container { QuickTime, Mxf, Wave, Other };

Container containerOf(const std::string &path);

/// One audio stream of the file to be written.
struct AudioTrack {
    int stream = 0;            ///< index of the source's stream
    std::string codec;         ///< as asked for; empty where the list names none
    std::vector<int> channels; ///< the channels that are kept, in order; empty = all, untouched
    long bitRate = 0;          ///< [bit/s] of a lossy codec; 0 = none is set
};

/// What the application's export list asks for, independent of how it says so.
struct ExportPlan {
    std::string input;
    std::string output;
    Container container = Container::Other;
    bool streamsAreNamed = false; ///< the list says which streams to take; otherwise all are meant
    bool takesPicture = false;
    std::vector<AudioTrack> tracks;
    std::string commonCodec; ///< the audio codec of a list that names no streams; empty = none
    Options pictureOptions;  ///< codec, bit rate, size and the codec's own frame rate, in order
    Options metadata;
    std::optional<std::string> timecode;
    std::optional<std::string> readerRate; ///< the frame rate that came with the timecode
};

/// What \a metadata says of \a key, such as "time_reference"; nothing where it says nothing.
std::optional<std::string> noteIn(const Options &metadata, const std::string &key);

/// Reads the plan out of \a list, whose job is an export. Where \a hints do not name the channel that carries
/// the timecode, the list's channel groups and \a source do. Throws Refusal when the list names a stream that
/// \a source does not have.
ExportPlan planOf(const ArgumentList &list, const Source &source, const Hints &hints = {});

} // namespace tooladapter

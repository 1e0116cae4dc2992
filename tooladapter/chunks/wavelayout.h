// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/chunks/wavechunks.h"

#include <optional>
#include <string>
#include <vector>

namespace tooladapter
{

/// A chunk that is to be in a file.
struct NewChunk {
    std::string name;
    std::string content;
};

/// How a WAV file gets other chunks without a byte of its samples being touched.
struct Rewriting {
    std::string header; ///< replaces as many bytes at the beginning of the file
    std::string tail;   ///< is appended to the file, before the header is replaced
};

/// The rewriting that gives the chunk "bext" of \a written the content \a bext, its metadata chunk, the
/// "LIST" called "INFO", the content \a info, and adds \a others behind the samples. Of the first two, what
/// fits stays before the samples. Nothing if that changes nothing, and if \a written is not as the tool
/// writes it: whole, with one "bext" before the samples, and with a header of at most 1 MiB.
std::optional<Rewriting> rewritingOf(const Bytes &written, const std::string &bext, const std::string &info,
                                     const std::vector<NewChunk> &others);

/// The metadata chunk of \a file, whose chunks are \a list: a "LIST" called "INFO". nullptr without one.
const Chunk *infoOf(const Bytes &file, const ChunkList &list);

} // namespace tooladapter

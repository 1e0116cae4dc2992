// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tooladapter
{

/// The bytes of a file, or of memory that represents one.
struct Bytes {
    std::uint64_t size = 0;
    /// The \a count bytes at \a position, which must be within the size.
    std::function<std::string(std::uint64_t position, std::size_t count)> at;
};

/// A chunk of a WAV file.
struct Chunk {
    std::string name;         ///< four characters, such as "bext"
    std::uint64_t begin = 0;  ///< [bytes] position of its content in the file
    std::uint64_t length = 0; ///< [bytes] of its content, without the padding

    std::uint64_t next() const { return begin + length + length % 2; } ///< where the chunk behind it begins

    bool operator==(const Chunk &) const = default;
};

/// The chunks of a WAV file.
struct ChunkList {
    bool isLong = false;  ///< lengths of 4 GiB and more are in a chunk "ds64"
    bool isWhole = false; ///< the file consists of these chunks; false also for a file that is no WAV file
    std::vector<Chunk> chunks; ///< in order, up to the first that is damaged

    /// The first chunk called \a name; nullptr without one.
    const Chunk *find(const char *name) const;
};

/// The chunks of \a file, a RIFF or RF64 file. Reads the heads of at most 1000 chunks, no content.
ChunkList chunksOf(const Bytes &file);

/// Whether \a name, of four characters, can be that of a chunk or of an entry of one.
bool isChunkName(const std::string &name);

/// The number that \a count bytes (up to 8) at \a position of \a bytes are, the least significant byte first.
/// The bytes must be there.
std::uint64_t numberAt(const std::string &bytes, std::size_t position, std::size_t count);

/// The inverse: \a number as \a count bytes.
std::string numberBytes(std::uint64_t number, std::size_t count);

/// A chunk called \a name with \a content, padded to an even length.
std::string chunkBytes(const std::string &name, const std::string &content);

} // namespace tooladapter

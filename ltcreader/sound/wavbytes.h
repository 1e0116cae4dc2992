// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

namespace ltcreader
{

/// The bytes of a file, in which a WAV header without a length shows the length that the file has.
///
/// A recorder that lost power leaves the length of the sound at 0; all of the sound is there nevertheless.
class WavBytes
{
public:
    /// Takes over \a file, which is open for reading.
    explicit WavBytes(std::FILE *file);

    WavBytes(const WavBytes &) = delete;
    WavBytes &operator=(const WavBytes &) = delete;
    ~WavBytes();

    std::int64_t size() const; ///< [bytes]

    /// As std::fseek(); returns the new position, -1 when that fails.
    std::int64_t seek(std::int64_t offset, int whence);

    /// Reads up to \a count bytes \a to a buffer and returns how many.
    std::int64_t read(void *to, std::int64_t count);

private:
    void findEmptyLength();

    std::FILE *file;
    std::int64_t fileSize = 0;
    std::int64_t lengthPosition = -1;          ///< of the four bytes that are replaced; -1 = none
    std::array<unsigned char, 4> trueLength{}; ///< little endian
};

} // namespace ltcreader

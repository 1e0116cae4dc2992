// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

namespace tooladapter
{

/// Thrown where a file does not hold what its own structure promises.
class BrokenFile : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A file of which a few bytes here and there are read. Every read throws BrokenFile where the file ends
/// before.
class BinaryFile
{
public:
    /// Opens the file at \a path. Throws BrokenFile where that cannot be done.
    explicit BinaryFile(const std::string &path);

    std::uint64_t size() const { return length; } ///< [bytes]

    /// The \a count bytes from \a position on.
    std::string bytes(std::uint64_t position, std::size_t count);

    /// The number that \a count bytes (up to 8) at \a position are, the most significant byte first.
    std::uint64_t bigEndian(std::uint64_t position, std::size_t count);

    /// Like bigEndian(), the least significant byte first.
    std::uint64_t littleEndian(std::uint64_t position, std::size_t count);

private:
    std::ifstream file;
    std::uint64_t length = 0; // [bytes]
};

} // namespace tooladapter

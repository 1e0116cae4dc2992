// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tooladapter
{

/// A regular file that is read and written anywhere. Every failure but that of opening it throws
/// std::system_error.
class RandomAccessFile
{
public:
    enum class Access { Read, Change };

    /// Opens the file at \a path; anything but a regular file is not opened. Never waits and never makes one.
    RandomAccessFile(const std::string &path, Access access);
    ~RandomAccessFile();
    RandomAccessFile(const RandomAccessFile &) = delete;
    RandomAccessFile &operator=(const RandomAccessFile &) = delete;

    bool isOpen() const { return descriptor >= 0; }
    std::uint64_t size() const; ///< [bytes]

    /// The \a count bytes at \a position.
    std::string read(std::uint64_t position, std::size_t count) const;

    void write(std::uint64_t position, const std::string &content);
    void truncate(std::uint64_t size); ///< [bytes]

private:
    int descriptor;
};

} // namespace tooladapter

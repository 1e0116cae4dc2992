// SPDX-License-Identifier: MIT
#include "tooladapter/binaryfile.h"

namespace tooladapter
{

BinaryFile::BinaryFile(const std::string &path) : file(path, std::ios::binary | std::ios::ate)
{
    if (!file)
        throw BrokenFile(path + " cannot be opened");
    length = static_cast<std::uint64_t>(file.tellg());
}

std::string BinaryFile::bytes(std::uint64_t position, std::size_t count)
{
    if (position > length || count > length - position)
        throw BrokenFile("the file ends too early");
    std::string block(count, '\0');
    file.seekg(static_cast<std::streamoff>(position));
    if (!file.read(block.data(), static_cast<std::streamsize>(count)))
        throw BrokenFile("the file cannot be read");
    return block;
}

std::uint64_t BinaryFile::bigEndian(std::uint64_t position, std::size_t count)
{
    std::uint64_t number = 0;
    for (const char byte : bytes(position, count))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

std::uint64_t BinaryFile::littleEndian(std::uint64_t position, std::size_t count)
{
    std::uint64_t number = 0;
    int shift = 0;
    for (const char byte : bytes(position, count)) {
        number |= std::uint64_t{static_cast<unsigned char>(byte)} << shift;
        shift += 8;
    }
    return number;
}

} // namespace tooladapter

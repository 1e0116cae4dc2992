// SPDX-License-Identifier: MIT
#include "ltcreader/sound/wavbytes.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ltcreader
{
namespace
{

using FileOffset = decltype(ftello(nullptr)); // Windows calls it otherwise

constexpr std::int64_t riffHeaderSize = 12; // "RIFF", a length and "WAVE"
constexpr std::int64_t chunkHeaderSize = 8; // a name and a length
constexpr std::int64_t longestLength = 0xFFFFFFFE;
constexpr int mostChunks = 1000; // before the sound; more are damage

std::string_view name(const std::array<unsigned char, riffHeaderSize> &bytes, std::size_t from)
{
    return {reinterpret_cast<const char *>(bytes.data()) + from, 4};
}

std::int64_t littleEndian(const unsigned char *bytes)
{
    return bytes[0] | std::int64_t{bytes[1]} << 8 | std::int64_t{bytes[2]} << 16 |
           std::int64_t{bytes[3]} << 24;
}

} // namespace

WavBytes::WavBytes(std::FILE *file) : file(file)
{
    fileSize = std::max<std::int64_t>(0, seek(0, SEEK_END));
    findEmptyLength();
    seek(0, SEEK_SET);
}

WavBytes::~WavBytes()
{
    std::fclose(file);
}

void WavBytes::findEmptyLength()
{
    std::array<unsigned char, riffHeaderSize> head{};
    seek(0, SEEK_SET);
    if (read(head.data(), riffHeaderSize) != riffHeaderSize || name(head, 0) != "RIFF" ||
        name(head, 8) != "WAVE") {
        return;
    }
    std::int64_t position = riffHeaderSize;
    for (int chunk = 0; chunk < mostChunks; ++chunk) {
        seek(position, SEEK_SET);
        if (read(head.data(), chunkHeaderSize) != chunkHeaderSize)
            return;
        const std::int64_t length = littleEndian(head.data() + 4);
        position += chunkHeaderSize;
        if (name(head, 0) == "data") {
            if (length != 0 || position >= fileSize)
                return;
            const std::int64_t rest = std::min(fileSize - position, longestLength);
            for (std::size_t i = 0; i < trueLength.size(); ++i) {
                trueLength[i] = static_cast<unsigned char>(rest >> (8 * i) & 0xFF);
            }
            lengthPosition = position - 4;
            return;
        }
        position += length + length % 2; // chunks begin at even places
    }
}

std::int64_t WavBytes::size() const
{
    return fileSize;
}

std::int64_t WavBytes::seek(std::int64_t offset, int whence)
{
    return fseeko(file, static_cast<FileOffset>(offset), whence) == 0 ? std::int64_t{ftello(file)} : -1;
}

std::int64_t WavBytes::read(void *to, std::int64_t count)
{
    if (count <= 0)
        return 0;
    const std::int64_t position = ftello(file);
    const auto given = static_cast<std::int64_t>(std::fread(to, 1, static_cast<std::size_t>(count), file));
    for (std::int64_t i = 0; lengthPosition >= 0 && i < 4; ++i) {
        const std::int64_t place = lengthPosition + i - position;
        if (place >= 0 && place < given) {
            static_cast<unsigned char *>(to)[place] = trueLength[static_cast<std::size_t>(i)];
        }
    }
    return given;
}

} // namespace ltcreader

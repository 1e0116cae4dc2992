// SPDX-License-Identifier: MIT
#include "tooladapter/waveheader.h"

namespace tooladapter
{
namespace
{

constexpr std::uint64_t fileHeaderLength = 12;     // "RIFF", length and "WAVE"
constexpr std::uint64_t seeElsewhere = 0xffffffff; // the length of a long file's data stands in "ds64"

/// A chunk: where its content lies [bytes].
struct Chunk {
    std::string name;
    std::uint64_t begin = 0;
    std::uint64_t length = 0;

    std::uint64_t next() const { return begin + length + length % 2; }
};

Chunk chunkAt(BinaryFile &file, std::uint64_t position)
{
    return {file.bytes(position, 4), position + 8, file.littleEndian(position + 4, 4)};
}

} // namespace

Source readWave(BinaryFile &file)
{
    const std::string kind = file.bytes(0, 4);
    if ((kind != "RIFF" && kind != "RF64") || file.bytes(8, 4) != "WAVE")
        throw BrokenFile("this is no WAV file");

    Stream stream;
    stream.kind = Stream::Kind::Audio;
    std::uint64_t bytesPerSecond = 0;
    std::uint64_t longLength = 0;
    Chunk chunk = chunkAt(file, fileHeaderLength);
    for (; chunk.name != "data"; chunk = chunkAt(file, chunk.next())) {
        if (chunk.name == "ds64") {
            longLength = file.littleEndian(chunk.begin + 8, 8);
        } else if (chunk.name == "fmt ") {
            stream.channels = static_cast<int>(file.littleEndian(chunk.begin + 2, 2));
            bytesPerSecond = file.littleEndian(chunk.begin + 8, 4);
        }
    }
    const std::uint64_t length = chunk.length == seeElsewhere ? longLength : chunk.length;
    if (length > file.size() - chunk.begin || bytesPerSecond == 0)
        throw BrokenFile("the WAV file is not whole");
    stream.duration = static_cast<double>(length) / static_cast<double>(bytesPerSecond);
    return Source{{stream}, 0.0, stream.duration, {}};
}

} // namespace tooladapter

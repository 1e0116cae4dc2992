// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/chunks/wavechunks.h"
#include "tooladapter/chunks/wavelayout.h"

#include <cstdint>
#include <string>
#include <vector>

/// WAV files of bytes that a test chooses.
namespace wavebytes
{

using Chunks = std::vector<tooladapter::NewChunk>;

inline tooladapter::Bytes bytesOf(const std::string &content)
{
    return {content.size(), [&content](std::uint64_t position, std::size_t count) {
                return content.substr(position, count);
            }};
}

inline std::string bytesOf(const Chunks &chunks)
{
    std::string bytes;
    for (const auto &chunk : chunks)
        bytes += tooladapter::chunkBytes(chunk.name, chunk.content);
    return bytes;
}

/// The content of a chunk "fmt ".
inline std::string format(int channels, int bits, int sampleRate = 48000, int form = 1)
{
    using tooladapter::numberBytes;
    const auto frame = static_cast<std::uint64_t>(channels * bits / 8);
    const auto rate = static_cast<std::uint64_t>(sampleRate);
    return numberBytes(static_cast<std::uint64_t>(form), 2) +
           numberBytes(static_cast<std::uint64_t>(channels), 2) + numberBytes(rate, 4) +
           numberBytes(rate * frame, 4) + numberBytes(frame, 2) +
           numberBytes(static_cast<std::uint64_t>(bits), 2);
}

/// A file of \a chunks.
inline std::string riff(const Chunks &chunks)
{
    const std::string content = "WAVE" + bytesOf(chunks);
    return "RIFF" + tooladapter::numberBytes(content.size(), 4) + content;
}

/// Like riff(), with the lengths of file and samples in a chunk of their own.
inline std::string rf64(const Chunks &chunks)
{
    using tooladapter::numberBytes;
    constexpr std::uint64_t longLengths = 36; // [bytes] of that chunk
    std::string content = bytesOf(chunks);
    std::uint64_t dataLength = 0;
    std::size_t position = 0;
    for (const auto &chunk : chunks) {
        if (chunk.name == "data") {
            dataLength = chunk.content.size();
            content.replace(position + 4, 4, "\xff\xff\xff\xff");
        }
        position += tooladapter::chunkBytes(chunk.name, chunk.content).size();
    }
    return "RF64\xff\xff\xff\xffWAVE" +
           tooladapter::chunkBytes("ds64", numberBytes(4 + longLengths + content.size(), 8) +
                                               numberBytes(dataLength, 8) + numberBytes(dataLength / 2, 8) +
                                               numberBytes(0, 4)) +
           content;
}

/// A text in a field of \a length bytes.
inline std::string field(std::string text, std::size_t length)
{
    text.resize(length, '\0');
    return text;
}

/// The content of a chunk "bext" as a field recorder fills it.
inline std::string bext(std::uint64_t timeReference, const std::string &description = "sSCENE=12 sTAKE=3")
{
    using tooladapter::numberBytes;
    std::string umid;
    for (int i = 0; i < 64; ++i)
        umid += static_cast<char>(i + 1);
    return field(description, 256) + field("Recorder", 32) + field("DE123 0001", 32) + "2026-05-01" +
           "10:11:12" + numberBytes(timeReference, 8) + numberBytes(2, 2) + umid +
           numberBytes(0xf704, 2) + // loudness -23.00
           numberBytes(512, 2) + numberBytes(0xff9c, 2) + numberBytes(3, 2) + numberBytes(4, 2) +
           std::string(180, '\0') + "A=PCM,F=48000,W=24,M=multi,T=Recorder\r\n";
}

/// \a content with a zero behind it if its length is odd.
inline std::string evened(std::string content)
{
    content.append(content.size() % 2, '\0');
    return content;
}

/// \a original after \a rewriting.
inline std::string rewritten(std::string original, const tooladapter::Rewriting &rewriting)
{
    return original.replace(0, rewriting.header.size(), rewriting.header) + rewriting.tail;
}

/// The content of the first chunk of \a file called \a name; "none" without one.
inline std::string contentOf(const std::string &file, const char *name)
{
    const auto list = tooladapter::chunksOf(bytesOf(file));
    const auto *const chunk = list.find(name);
    return chunk ? file.substr(chunk->begin, chunk->length) : "none";
}

} // namespace wavebytes

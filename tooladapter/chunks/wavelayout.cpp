// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/wavelayout.h"

#include <algorithm>

namespace tooladapter
{
namespace
{

constexpr std::uint64_t headLength = 8; // of a chunk: name and length
constexpr std::uint64_t fileHeadLength = 12;
constexpr std::uint64_t longestHeader = 1 << 20;
constexpr std::uint64_t longestShortLength = 0xffffffff;
constexpr std::uint64_t longLengthsLength = 28;
constexpr const char *seeElsewhere = "\xff\xff\xff\xff"; // the length is in "ds64"

/// The bytes of \a chunk with its head and padding, out of \a header.
std::string wholeChunk(const std::string &header, const Chunk &chunk)
{
    return header.substr(chunk.begin - headLength, chunk.next() - chunk.begin + headLength);
}

std::string filler(std::uint64_t length)
{
    return length == 0 ? std::string() : chunkBytes("JUNK", std::string(length - headLength, '\0'));
}

bool canBeFilled(std::uint64_t room, std::uint64_t used)
{
    return used == room || used + headLength <= room;
}

/// Writes that the file is \a fileSize bytes long into \a header, which was \a old, with the chunks of \a
/// list. False if there is no place for so large a number.
bool setFileSize(std::string &header, const std::string &old, const ChunkList &list, std::uint64_t fileSize)
{
    const std::uint64_t length = fileSize - headLength;
    const Chunk &first = list.chunks.front();
    if (list.isLong) {
        header.replace(first.begin, 8, numberBytes(length, 8));
        return true;
    }
    if (length < longestShortLength) {
        header.replace(4, 4, numberBytes(length, 4));
        return true;
    }
    // The tool leaves room for the chunk of the long lengths where it cannot know how long a file gets.
    const Chunk *format = list.find("fmt ");
    if (first.name != "JUNK" || first.length < longLengthsLength || !format || format->length < 16 ||
        format->next() > old.size())
        return false;
    const std::uint64_t samplesLength = list.find("data")->length;
    const std::uint64_t frameSize = std::max<std::uint64_t>(1, numberAt(old, format->begin + 12, 2));
    header.replace(0, 4, "RF64");
    header.replace(4, 4, seeElsewhere);
    header.replace(first.begin - headLength, 4, "ds64");
    header.replace(first.begin, longLengthsLength,
                   numberBytes(length, 8) + numberBytes(samplesLength, 8) +
                       numberBytes(samplesLength / frameSize, 8) + numberBytes(0, 4));
    header.replace(header.size() - 4, 4, seeElsewhere); // the length of the samples
    return true;
}

/// The chunks of a written file that are rewritten, or that others must not move.
struct Places {
    const Chunk *bext;
    const Chunk *info; ///< nullptr = none
    const Chunk *data;
};

/// Nothing where \a written, whose chunks are \a list, is not as the tool writes it.
std::optional<Places> placesIn(const Bytes &written, const ChunkList &list)
{
    const Places places{list.find("bext"), infoOf(written, list), list.find("data")};
    const auto bexts = std::count_if(list.chunks.begin(), list.chunks.end(),
                                     [](const Chunk &chunk) { return chunk.name == "bext"; });
    if (!list.isWhole || !places.data || bexts != 1 || places.data->begin > longestHeader ||
        places.bext->begin > places.data->begin || (places.info && places.info->begin > places.data->begin))
        return std::nullopt;
    return places;
}

/// \a header with the chunks \a before in place of the old ones; those without room go into the tail. The
/// samples stay where they are, so the chunks before them have as much room as they had.
Rewriting rearranged(const std::string &header, const ChunkList &list, const Places &places,
                     std::vector<std::string> before)
{
    Rewriting result{header.substr(0, fileHeadLength), {}};
    for (const Chunk *chunk = list.chunks.data(); chunk != places.data; ++chunk) {
        if (chunk != places.bext && chunk != places.info)
            result.header += wholeChunk(header, *chunk);
    }
    const std::uint64_t room = places.data->begin - headLength - result.header.size();
    std::uint64_t used = 0;
    for (const std::string &chunk : before)
        used += chunk.size();
    while (!canBeFilled(room, used)) {
        used -= before.back().size();
        result.tail.insert(0, before.back());
        before.pop_back();
    }
    for (const std::string &chunk : before)
        result.header += chunk;
    result.header += filler(room - used) + header.substr(places.data->begin - headLength);
    return result;
}

} // namespace

const Chunk *infoOf(const Bytes &file, const ChunkList &list)
{
    const auto found = std::find_if(list.chunks.begin(), list.chunks.end(), [&file](const Chunk &chunk) {
        return chunk.name == "LIST" && chunk.length >= 4 && file.at(chunk.begin, 4) == "INFO";
    });
    return found == list.chunks.end() ? nullptr : &*found;
}

std::optional<Rewriting> rewritingOf(const Bytes &written, const std::string &bext, const std::string &info,
                                     const std::vector<NewChunk> &others)
{
    const ChunkList list = chunksOf(written);
    const auto places = placesIn(written, list);
    if (!places)
        return std::nullopt;
    const std::string header = written.at(0, places->data->begin);
    std::vector<std::string> before{chunkBytes("bext", bext)};
    if (places->info || !info.empty())
        before.push_back(chunkBytes("LIST", info));
    Rewriting result = rearranged(header, list, *places, before);
    for (const NewChunk &chunk : others)
        result.tail += chunkBytes(chunk.name, chunk.content);
    if (list.chunks.back().next() > written.size)
        result.tail.insert(0, 1, '\0'); // the padding of the last chunk
    if (!setFileSize(result.header, header, list, written.size + result.tail.size()))
        return std::nullopt;
    const bool changesNothing = result.tail.empty() && result.header == header;
    return changesNothing ? std::nullopt : std::optional(result);
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/keptchunks.h"

#include "tooladapter/chunks/bextchunk.h"
#include "tooladapter/chunks/infochunk.h"
#include "tooladapter/chunks/ixmlchunk.h"
#include "tooladapter/posix/randomaccessfile.h"
#include "tooladapter/rules/names.h"
#include "tooladapter/rules/refusal.h"

#include <array>
#include <string_view>
#include <system_error>
#include <utility>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

constexpr std::uint64_t mostBytes = 16 << 20; // in all carried chunks
constexpr std::uint64_t formatLength = 16;    // of what every "fmt " begins with

/// Kept byte for byte. The second group is none of broadcast wave's, but does not depend on the samples
/// either.
constexpr std::array keptAsTheyAre{"cue "sv, "_PMX"sv, "axml"sv, "plst"sv, "smpl"sv,
                                   "inst"sv, "cart"sv, "DISP"sv, "id3 "sv, "ID3 "sv};

bool isKeptAsItIs(const std::string &name, const std::string &content, bool keepsAllChannels)
{
    if (name == "LIST")
        return content.starts_with("adtl");
    if (name == "chna") // numbers the channels
        return keepsAllChannels;
    return isOneOf(keptAsTheyAre, name);
}

bool isCarried(const std::string &name)
{
    return name == "bext" || name == "iXML" || isKeptAsItIs(name, "adtl", true);
}

/// The chunks of the source that may be of use, in order.
std::vector<NewChunk> carriedChunks(const Bytes &source, const ChunkList &list)
{
    std::vector<NewChunk> carried;
    std::uint64_t room = mostBytes;
    for (const Chunk &chunk : list.chunks) {
        if (!isCarried(chunk.name) || chunk.length > room)
            continue;
        room -= chunk.length;
        carried.push_back({chunk.name, source.at(chunk.begin, chunk.length)});
    }
    return carried;
}

/// The beginning of the chunk "fmt ": form, channels, rates, size of a frame, bits. Empty if it is damaged.
std::string formatOf(const Bytes &file, const ChunkList &list)
{
    const Chunk *const format = list.find("fmt ");
    return format && format->length >= formatLength ? file.at(format->begin, formatLength) : std::string();
}

std::string contentOf(const Bytes &file, const Chunk *chunk)
{
    return chunk && chunk->length <= mostBytes ? file.at(chunk->begin, chunk->length) : std::string();
}

/// What a written file says of itself, by the beginnings of the chunks "fmt " of both files and its \a start.
WrittenSound soundOf(const std::string &sourceFormat, const std::string &writtenFormat, std::uint64_t start)
{
    const auto bits = [](const std::string &format) { return static_cast<int>(numberAt(format, 14, 2)); };
    WrittenSound sound{
        start, numberAt(writtenFormat, 4, 4), {}, static_cast<int>(numberAt(sourceFormat, 2, 2))};
    if (bits(writtenFormat) != bits(sourceFormat))
        sound.bits = bits(writtenFormat);
    return sound;
}

/// The chunks of a source as the written file is to have them.
struct KeptChunks {
    std::optional<std::string> bext; ///< its content
    std::vector<NewChunk> others;
};

/// Of several chunks "bext" or "iXML", the first that is not damaged counts.
KeptChunks changedChunks(std::vector<NewChunk> carried, const WaveChanges &changes, const WrittenSound &sound)
{
    KeptChunks kept;
    bool hasIxml = false;
    for (NewChunk &chunk : carried) {
        if (chunk.name == "bext") {
            kept.bext = kept.bext ? kept.bext : changedBext(chunk.content, changes, sound.start);
        } else if (chunk.name == "iXML") {
            auto changed = hasIxml ? std::nullopt : changedIxml(chunk.content, changes, sound);
            hasIxml = hasIxml || changed;
            if (changed)
                kept.others.push_back({chunk.name, std::move(*changed)});
        } else if (isKeptAsItIs(chunk.name, chunk.content, changes.keptChannels.empty())) {
            kept.others.push_back(std::move(chunk));
        }
    }
    return kept;
}

/// \a file as bytes, not to be used longer than it.
Bytes bytesOf(const RandomAccessFile &file)
{
    return {file.size(),
            [&file](std::uint64_t position, std::size_t count) { return file.read(position, count); }};
}

} // namespace

std::optional<Rewriting> rewritingWithChunksOf(const Bytes &source, const Bytes &written,
                                               const WaveChanges &changes)
{
    const ChunkList sourceList = chunksOf(source);
    const ChunkList writtenList = chunksOf(written);
    const std::string sourceFormat = formatOf(source, sourceList);
    const std::string writtenFormat = formatOf(written, writtenList);
    const std::string writtenBext = contentOf(written, writtenList.find("bext"));
    const auto start = timeReferenceOf(writtenBext);
    if (sourceFormat.empty() || writtenFormat.empty() || !start)
        return std::nullopt;

    const KeptChunks kept = changedChunks(carriedChunks(source, sourceList), changes,
                                          soundOf(sourceFormat, writtenFormat, *start));
    // Common readers of RF64 do not skip the padding; a coding history may end in zeros.
    std::string bext = kept.bext.value_or(writtenBext);
    bext.append(bext.size() % 2, '\0');
    const std::string info = contentOf(written, infoOf(written, writtenList));
    const std::string newInfo = mergedInfo(info, contentOf(source, infoOf(source, sourceList)));
    return rewritingOf(written, bext, newInfo == "INFO" ? info : newInfo, kept.others);
}

void keepChunks(const std::string &source, const std::string &written, const WaveChanges &changes)
{
    const RandomAccessFile from(source, RandomAccessFile::Access::Read);
    if (!from.isOpen())
        return;
    RandomAccessFile to(written, RandomAccessFile::Access::Change);
    if (!to.isOpen())
        throw Refusal(written + " cannot be opened for its metadata");
    const auto rewriting = rewritingWithChunksOf(bytesOf(from), bytesOf(to), changes);
    if (!rewriting)
        return;

    // The file ends where its header says. Until that is replaced, the file is what it was.
    const std::uint64_t end = to.size();
    const std::string oldHeader = to.read(0, rewriting->header.size());
    try {
        to.write(end, rewriting->tail);
        to.write(0, rewriting->header);
    } catch (const std::system_error &) {
        to.write(0, oldHeader);
        to.truncate(end);
        throw;
    }
}

} // namespace tooladapter

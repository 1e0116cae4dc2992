// SPDX-License-Identifier: MIT

// The chunks of a sound file that an export keeps: from the bytes of the source to those of the written file.
//
// Input: the file that the tool has written (three of its own, or the source itself), whether the list names
// a start and a speed, the frame rate that the application knows, the channel of four that is left out (0 =
// none), then the bytes of the source.

#include "tests/fuzz/fuzzinput.h"
#include "tests/tooladapter/chunks/wavebytes.h"
#include "tooladapter/chunks/bextchunk.h"
#include "tooladapter/chunks/keptchunks.h"
#include "tooladapter/chunks/xmlelement.h"

#include <algorithm>
#include <array>

using fuzz::require;
using namespace tooladapter;
using namespace wavebytes;

namespace
{

constexpr std::uint64_t start = 0x1'2345'6789; // [samples since midnight] of the tool's files
constexpr const char *speed = "029.970-DF";

std::string toolFile(int kind)
{
    const NewChunk room{"JUNK", std::string(28, '\0')};
    const NewChunk extension{"bext",
                             field(std::string(), 338) + numberBytes(start, 8) + std::string(260, '\0')};
    const NewChunk metadata{"LIST", "INFOICMT" + chunkBytes("", "tool")};
    const NewChunk sound{"data", "samples of an odd length."};
    if (kind == 0)
        return riff({room, {"fmt ", format(3, 24)}, extension, metadata, sound});
    if (kind == 1)
        return rf64({{"fmt ", format(3, 24)}, extension, metadata, sound});
    return riff(
        {{"fmt ", format(3, 32, 96000, 3)}, {"fact", "1234"}, extension, sound, {"PEAK", "12345678"}});
}

/// The bytes of \a content, guarded against reading beyond them.
Bytes guarded(const std::string &content)
{
    return {content.size(), [&content](std::uint64_t position, std::size_t count) {
                require(position <= content.size() && count <= content.size() - position,
                        "only what is there is read");
                return content.substr(position, count);
            }};
}

WaveChanges takeChanges(fuzz::Input &input)
{
    WaveChanges changes;
    changes.setsStart = input.choice(2) == 1;
    if (changes.setsStart) {
        changes.speed = input.choice(2) == 1 ? speed : std::string();
        changes.rate = std::array{FrameRate{}, FrameRate{25, 1}, FrameRate{30000, 1001}}.at(
            static_cast<std::size_t>(input.choice(3)));
    }
    if (const int muted = input.choice(5); muted > 0) {
        changes.keptChannels = {0, 1, 2, 3};
        changes.keptChannels.erase(changes.keptChannels.begin() + (muted - 1));
    }
    return changes;
}

void checkFile(const std::string &file, const std::string &written)
{
    const ChunkList list = chunksOf(guarded(file));
    require(list.isWhole, "the file is whole");
    const std::uint64_t length =
        list.isLong ? numberAt(file, list.chunks.front().begin, 8) : numberAt(file, 4, 4);
    require(length == file.size() - 8, "the file says its length");
    const ChunkList old = chunksOf(guarded(written));
    const std::uint64_t sound = list.find("data")->begin; // without one the fuzzer sees a crash
    require(old.find("data")->begin == sound, "the samples stay where they are");
    require(written.compare(sound, std::string::npos, file, sound, written.size() - sound) == 0,
            "the samples and what follows them stay as they are");
}

void checkBext(const std::string &file, const std::string &written, const std::string &source,
               const WaveChanges &changes)
{
    const auto reference = timeReferenceOf(contentOf(file, "bext"));
    require(reference.has_value(), "the broadcast extension has all fields");
    require(contentOf(file, "bext").size() % 2 == 0, "the broadcast extension needs no padding");
    const auto toolReference = timeReferenceOf(contentOf(written, "bext"));
    require(!changes.setsStart || reference == toolReference, "the start is the tool's");
    bool isSourcesOwn = reference == toolReference;
    for (const Chunk &chunk : chunksOf(guarded(source)).chunks) {
        if (chunk.name == "bext")
            isSourcesOwn |= timeReferenceOf(source.substr(chunk.begin, chunk.length)) == reference;
    }
    require(isSourcesOwn, "without a new start, it is the source's");
}

void checkIxml(const std::string &content, const WaveChanges &changes)
{
    const std::string text = content.substr(0, content.find('\0'));
    const auto root = parseXml(text);
    require(root && root->name == "BWFXML", "the iXML can be read", QString::fromStdString(text));
    if (!changes.setsStart)
        return;
    const auto speeds = root->childrenCalled("SPEED");
    require(!speeds.empty(), "the iXML has a speed");
    const std::vector<std::pair<const char *, std::string>> wanted{
        {"TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", std::to_string(start >> 32)},
        {"TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", std::to_string(start & 0xffffffff)},
        {"TIMECODE_FLAG", changes.speed.empty() ? std::string() : "DF"}};
    for (const XmlElement *place : speeds) {
        for (const auto &[name, number] : wanted) {
            if (number.empty())
                continue;
            const auto found = place->childrenCalled(name);
            require(!found.empty(), "the iXML says all of the start", QString::fromStdString(text));
            for (const XmlElement *element : found) {
                require(text.substr(element->contentBegin, element->contentEnd - element->contentBegin) ==
                            number,
                        "the start in the iXML is the new one", QString::fromStdString(text));
            }
        }
    }
}

/// What is kept byte for byte must be in the source.
void checkOthers(const std::string &file, std::size_t tailBegin, const std::string &source)
{
    Chunks inSource;
    for (const Chunk &chunk : chunksOf(guarded(source)).chunks)
        inSource.push_back({chunk.name, source.substr(chunk.begin, chunk.length)});
    for (const Chunk &chunk : chunksOf(guarded(file)).chunks) {
        const std::string content = file.substr(chunk.begin, chunk.length);
        const bool isChanged = chunk.name == "iXML" || chunk.name == "bext" || content.starts_with("INFO");
        if (chunk.begin < tailBegin || isChanged)
            continue;
        require(std::any_of(
                    inSource.begin(), inSource.end(),
                    [&](const NewChunk &kept) { return kept.name == chunk.name && kept.content == content; }),
                "a chunk is as it was in the source", QString::fromStdString(chunk.name));
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const int kind = input.choice(4);
    const WaveChanges changes = takeChanges(input);
    const std::string source = input.rest().toStdString();
    const std::string written = kind == 3 ? source : toolFile(kind);

    const auto rewriting = rewritingWithChunksOf(guarded(source), guarded(written), changes);
    if (!rewriting)
        return 0;
    require(rewriting->header.size() <= written.size(), "the header replaces what is there");
    const std::string file = rewritten(written, *rewriting);
    checkFile(file, written);
    checkBext(file, written, source, changes);
    const std::string ixml = contentOf(file, "iXML");
    if (kind != 3) {
        if (ixml != "none")
            checkIxml(ixml, changes);
        checkOthers(file, written.size(), source);
    }

    if (kind != 3 && changes.keptChannels.empty()) {
        const auto again = rewritingWithChunksOf(guarded(file), guarded(written), changes);
        const std::string second = again ? rewritten(written, *again) : written;
        require(contentOf(second, "iXML") == ixml, "a second export keeps the iXML");
        require(contentOf(second, "bext") == contentOf(file, "bext"), "a second export keeps the bext");
    }
    return 0;
}

// SPDX-License-Identifier: MIT
#include "tooladapter/mxfheader.h"

#include "tooladapter/starttimecode.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string_view>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

// What the keys begin with; the two bytes behind tell which of the kind it is.
constexpr std::string_view partitionKey = "\x06\x0e\x2b\x34\x02\x05\x01\x01\x0d\x01\x02\x01\x01"sv;
constexpr std::string_view setKey = "\x06\x0e\x2b\x34\x02\x53\x01\x01\x0d\x01\x01\x01\x01\x01"sv;

// Partitions
constexpr char headerKind = 0x02;
constexpr char footerKind = 0x04;
constexpr char indexPackKind = 0x11; // the last of a whole file

// Sets of the header
constexpr char sequenceKind = 0x0f;
constexpr char timecodeKind = 0x14;
constexpr char trackKind = 0x3b;
constexpr std::string_view pictureKinds = "\x28\x29\x51"sv; // by components, by colours, compressed
constexpr std::string_view soundKinds = "\x42\x47\x48"sv;   // of any kind, AES3, wave

// Properties of the sets
constexpr std::uint64_t lengthTag = 0x0202;      // [edit units]
constexpr std::uint64_t startTag = 0x1501;       // [frames since midnight]
constexpr std::uint64_t nominalRateTag = 0x1502; // [frame numbers a second]
constexpr std::uint64_t dropFrameTag = 0x1503;
constexpr std::uint64_t editRateTag = 0x4b01; // [edit units a second] numerator and denominator
constexpr std::uint64_t channelsTag = 0x3d07;

/// A key with its value: where that lies [bytes].
struct Packet {
    std::string key; // 16 bytes
    std::uint64_t begin = 0;
    std::uint64_t end = 0;

    bool isPartition(char kind) const { return key.starts_with(partitionKey) && key[13] == kind; }
};

Packet packetAt(BinaryFile &file, std::uint64_t position)
{
    constexpr std::uint64_t keyLength = 16;
    constexpr std::uint64_t longForm = 0x80; // the low bits then tell how many bytes the length has
    std::uint64_t begin = position + keyLength + 1;
    std::uint64_t length = file.bigEndian(begin - 1, 1);
    if ((length & longForm) != 0) {
        const std::uint64_t count = length & ~longForm;
        if (count == 0 || count > 8)
            throw BrokenFile("a packet has no length");
        length = file.bigEndian(begin, count);
        begin += count;
    }
    if (length > file.size() - begin)
        throw BrokenFile("a packet is not whole");
    return {file.bytes(position, keyLength), begin, begin + length};
}

/// The properties of one set of the header: where each value begins [bytes], by tag.
using Properties = std::map<std::uint64_t, std::uint64_t>;

Properties propertiesOf(BinaryFile &file, const Packet &set)
{
    Properties properties;
    std::uint64_t position = set.begin;
    while (position + 4 <= set.end) {
        properties[file.bigEndian(position, 2)] = position + 4;
        position += 4 + file.bigEndian(position + 2, 2);
    }
    return properties;
}

/// What the sets of the header say, gathered.
class Header
{
public:
    explicit Header(BinaryFile &file) : file(file) {}

    void add(const Packet &set);
    Source source() const;

private:
    std::uint64_t number(const Properties &properties, std::uint64_t tag, std::size_t size);
    void addStream(Stream::Kind kind, int channels);

    BinaryFile &file;
    Source found;
    FrameRate editRate;
    std::uint64_t length = std::numeric_limits<std::uint64_t>::max(); // [edit units] of the shortest track
};

std::uint64_t Header::number(const Properties &properties, std::uint64_t tag, std::size_t size)
{
    const auto property = properties.find(tag);
    if (property == properties.end())
        throw BrokenFile("a property is missing");
    return file.bigEndian(property->second, size);
}

void Header::addStream(Stream::Kind kind, int channels)
{
    Stream stream;
    stream.kind = kind;
    stream.channels = channels;
    found.streams.push_back(stream);
}

void Header::add(const Packet &set)
{
    const Properties properties = propertiesOf(file, set);
    const char kind = set.key[14];
    if (kind == sequenceKind) {
        length = std::min(length, number(properties, lengthTag, 8));
    } else if (kind == timecodeKind) {
        found.timecode =
            StartTimecode::fromFrameNumber(static_cast<long>(number(properties, startTag, 8)),
                                           static_cast<int>(number(properties, nominalRateTag, 2)),
                                           number(properties, dropFrameTag, 1) != 0)
                .toText();
    } else if (kind == trackKind) {
        editRate.numerator = static_cast<long>(number(properties, editRateTag, 4));
        editRate.denominator = static_cast<long>(number(properties, editRateTag, 8) & 0xffffffff);
    } else if (pictureKinds.find(kind) != std::string_view::npos) {
        addStream(Stream::Kind::Picture, 0);
    } else if (soundKinds.find(kind) != std::string_view::npos) {
        addStream(Stream::Kind::Audio, static_cast<int>(number(properties, channelsTag, 4)));
    }
}

Source Header::source() const
{
    if (!editRate.isValid())
        throw BrokenFile("no track has a rate");
    Source source = found;
    source.duration = static_cast<double>(length) / editRate.perSecond();
    return source;
}

/// Throws BrokenFile unless \a header, the first packet, was written anew at the end and all that follows it
/// is there.
void checkClosed(BinaryFile &file, const Packet &header)
{
    constexpr std::uint64_t footerField = 24; // of a partition's value
    const char status = header.key[14];       // open 1 or 3, closed 2 or 4
    if (!header.isPartition(headerKind) || status % 2 != 0)
        throw BrokenFile("the header was not closed");
    if (!packetAt(file, file.bigEndian(header.begin + footerField, 8)).isPartition(footerKind))
        throw BrokenFile("there is no footer");
    const std::uint64_t lastLength = file.bigEndian(file.size() - 4, 4);
    if (lastLength > file.size() || !packetAt(file, file.size() - lastLength).isPartition(indexPackKind))
        throw BrokenFile("the end is missing");
}

bool belongsToHeader(const Packet &packet)
{
    constexpr std::string_view primer = "\x06\x0e\x2b\x34\x02\x05\x01\x01\x0d\x01\x02\x01\x01\x05"sv;
    constexpr std::string_view fill = "\x06\x0e\x2b\x34\x01\x01\x01"sv; // then a version
    return packet.key.starts_with(setKey) || packet.key.starts_with(primer) || packet.key.starts_with(fill);
}

} // namespace

Source readMxf(BinaryFile &file)
{
    Packet packet = packetAt(file, 0);
    checkClosed(file, packet);
    Header header(file);
    for (packet = packetAt(file, packet.end); belongsToHeader(packet); packet = packetAt(file, packet.end)) {
        if (packet.key.starts_with(setKey))
            header.add(packet);
    }
    return header.source();
}

} // namespace tooladapter

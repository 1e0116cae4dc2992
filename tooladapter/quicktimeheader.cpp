// SPDX-License-Identifier: MIT
#include "tooladapter/quicktimeheader.h"

#include "tooladapter/starttimecode.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace tooladapter
{
namespace
{

/// An atom: where its content lies [bytes].
struct Atom {
    std::string type;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

constexpr std::uint64_t versionLength = 4; // version and flags, at the beginning of most atoms
constexpr std::uint64_t listLength = 8;    // the same and a count, before the entries of a table

/// The atom that begins at \a position and must end by \a end.
Atom atomAt(BinaryFile &file, std::uint64_t position, std::uint64_t end)
{
    std::uint64_t headerLength = 8;
    std::uint64_t length = file.bigEndian(position, 4);
    const std::string type = file.bytes(position + 4, 4);
    if (length == 1) {
        length = file.bigEndian(position + headerLength, 8);
        headerLength += 8;
    }
    if (length < headerLength || length > end - position)
        throw BrokenFile("the atom \"" + type + "\" is not whole");
    return {type, position + headerLength, position + length};
}

std::vector<Atom> atomsIn(BinaryFile &file, std::uint64_t begin, std::uint64_t end)
{
    std::vector<Atom> atoms;
    for (std::uint64_t position = begin; position < end; position = atoms.back().end)
        atoms.push_back(atomAt(file, position, end));
    return atoms;
}

using Path = std::initializer_list<std::string_view>;

/// The first atom at the end of \a path below \a parent.
std::optional<Atom> find(BinaryFile &file, Atom parent, Path path)
{
    for (const std::string_view type : path) {
        const std::vector<Atom> atoms = atomsIn(file, parent.begin, parent.end);
        const auto found =
            std::find_if(atoms.begin(), atoms.end(), [type](const Atom &atom) { return atom.type == type; });
        if (found == atoms.end())
            return std::nullopt;
        parent = *found;
    }
    return parent;
}

/// Like find(), for what no whole file lacks.
Atom need(BinaryFile &file, const Atom &parent, Path path)
{
    const auto found = find(file, parent, path);
    if (!found)
        throw BrokenFile("there is no atom \"" + std::string{*(path.end() - 1)} + '"');
    return *found;
}

struct Duration {
    std::uint64_t length = 0;    ///< in units
    std::uint64_t perSecond = 1; ///< units in a second

    double seconds() const { return static_cast<double>(length) / static_cast<double>(perSecond); }
};

/// Reads a media or movie header, \a header.
Duration durationIn(BinaryFile &file, const Atom &header)
{
    const bool isLong = file.bigEndian(header.begin, 1) == 1;
    const std::size_t timeSize = isLong ? 8 : 4;
    const std::uint64_t scale = header.begin + versionLength + 2 * timeSize; // behind two dates
    Duration duration{file.bigEndian(scale + 4, timeSize), file.bigEndian(scale, 4)};
    if (duration.perSecond == 0)
        throw BrokenFile("a header has no time scale");
    return duration;
}

/// When the track \a track ends in the movie, whose header is \a movieHeader [s]: its edits, empty ones at
/// the beginning included.
double endOf(BinaryFile &file, const Atom &track, const Atom &movieHeader)
{
    const auto edits = find(file, track, {"edts", "elst"});
    if (!edits)
        return durationIn(file, need(file, track, {"mdia", "mdhd"})).seconds();
    const bool isLong = file.bigEndian(edits->begin, 1) == 1;
    const std::size_t timeSize = isLong ? 8 : 4;
    const std::uint64_t entryLength = 2 * timeSize + 4;
    Duration total{0, durationIn(file, movieHeader).perSecond};
    for (std::uint64_t entry = edits->begin + listLength; entry + entryLength <= edits->end;
         entry += entryLength)
        total.length += file.bigEndian(entry, timeSize);
    return total.seconds();
}

/// The number of channels in the sound description at \a entry.
int channelsIn(BinaryFile &file, std::uint64_t entry)
{
    constexpr std::uint64_t versionField = 16;
    constexpr std::uint64_t channelsField = 24;
    constexpr std::uint64_t secondVersionChannelsField = 48;
    const bool isSecondVersion = file.bigEndian(entry + versionField, 2) == 2;
    return static_cast<int>(isSecondVersion ? file.bigEndian(entry + secondVersionChannelsField, 4)
                                            : file.bigEndian(entry + channelsField, 2));
}

/// The timecode that the track with the sample table \a table begins with. \a entry is its description.
std::string timecodeIn(BinaryFile &file, const Atom &table, std::uint64_t entry)
{
    constexpr std::uint64_t flagsField = 20;
    constexpr std::uint64_t nominalRateField = 32; // [frame numbers a second]
    constexpr std::uint64_t dropFrameFlag = 1;
    const bool isDropFrame = (file.bigEndian(entry + flagsField, 4) & dropFrameFlag) != 0;
    const int nominalRate = static_cast<int>(file.bigEndian(entry + nominalRateField, 1));
    const auto places = find(file, table, {"stco"});
    const std::uint64_t sample = places ? file.bigEndian(places->begin + listLength, 4)
                                        : file.bigEndian(need(file, table, {"co64"}).begin + listLength, 8);
    const auto number = static_cast<long>(file.bigEndian(sample, 4));
    return StartTimecode::fromFrameNumber(number, nominalRate, isDropFrame).toText();
}

Stream readTrack(BinaryFile &file, const Atom &track, const Atom &movieHeader)
{
    const Atom handler = need(file, track, {"mdia", "hdlr"});
    const Atom table = need(file, track, {"mdia", "minf", "stbl"});
    const std::uint64_t entry = need(file, table, {"stsd"}).begin + listLength;
    const std::string type = file.bytes(handler.begin + 8, 4);

    Stream stream;
    stream.duration = endOf(file, track, movieHeader);
    if (type == "vide") {
        stream.kind = Stream::Kind::Picture;
    } else if (type == "soun") {
        stream.kind = Stream::Kind::Audio;
        stream.channels = channelsIn(file, entry);
    } else if (type == "tmcd") {
        stream.timecode = timecodeIn(file, table, entry);
    }
    return stream;
}

} // namespace

Source readQuickTime(BinaryFile &file)
{
    Source source;
    const Atom movie = need(file, {"", 0, file.size()}, {"moov"});
    const Atom header = need(file, movie, {"mvhd"});
    for (const Atom &atom : atomsIn(file, movie.begin, movie.end)) {
        if (atom.type == "trak")
            source.streams.push_back(readTrack(file, atom, header));
    }
    return source;
}

} // namespace tooladapter

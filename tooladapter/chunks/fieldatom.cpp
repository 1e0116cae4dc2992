// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/fieldatom.h"

#include "tooladapter/posix/randomaccessfile.h"
#include "tooladapter/rules/refusal.h"

#include <cstdint>
#include <string_view>
#include <system_error>
#include <vector>

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

constexpr std::size_t headerLength = 8;      // of an atom: its length and its type
constexpr std::size_t longHeaderLength = 16; // with a length of 64 bits behind them

std::size_t numberAt(std::string_view bytes, std::size_t position)
{
    std::size_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(bytes.at(position + i));
    return number;
}

void putNumber(std::string &bytes, std::size_t position, std::size_t number)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes.at(position + i) = static_cast<char>(number >> (24 - 8 * i));
}

/// Where the atoms between \a begin and \a end of \a bytes begin; none where they are not whole.
std::vector<std::size_t> atomsIn(std::string_view bytes, std::size_t begin, std::size_t end)
{
    std::vector<std::size_t> atoms;
    while (begin + headerLength <= end) {
        const std::size_t length = numberAt(bytes, begin);
        if (length < headerLength || length > end - begin)
            return {};
        atoms.push_back(begin);
        begin += length;
    }
    return atoms;
}

/// Finds the atom \a type within the atom at \a parent, whose atoms begin \a skipped bytes behind its header.
std::optional<std::size_t> find(std::string_view bytes, std::size_t parent, std::string_view type,
                                std::size_t skipped = 0)
{
    const std::size_t end = parent + numberAt(bytes, parent);
    for (const std::size_t atom : atomsIn(bytes, parent + headerLength + skipped, end)) {
        if (bytes.substr(atom + 4, 4) == type)
            return atom;
    }
    return std::nullopt;
}

/// The atoms from the track at \a track down to the first description of its pictures; empty where it has
/// none.
std::vector<std::size_t> descriptionPath(std::string_view bytes, std::size_t track)
{
    std::vector<std::size_t> path{track};
    const auto media = find(bytes, track, "mdia"sv);
    const auto handler = media ? find(bytes, *media, "hdlr"sv) : std::nullopt;
    if (!handler || numberAt(bytes, *handler) < 24 || bytes.substr(*handler + 16, 4) != "vide"sv)
        return {};
    path.push_back(*media);
    for (const std::string_view type : {"minf"sv, "stbl"sv, "stsd"sv}) {
        const auto atom = find(bytes, path.back(), type);
        if (!atom)
            return {};
        path.push_back(*atom);
    }
    constexpr std::size_t listLength = 8; // version, flags and number of descriptions
    const std::size_t table = path.back();
    const auto entries = atomsIn(bytes, table + headerLength + listLength, table + numberAt(bytes, table));
    if (entries.empty())
        return {};
    path.push_back(entries.front());
    return path;
}

} // namespace

std::optional<std::string> withFieldOrder(const std::string &movie, bool topFieldFirst)
{
    constexpr std::size_t picturesLength = 78; // of a description, before its own atoms
    constexpr char topFirst = 9;               // both with the lines of the fields by turns
    constexpr char bottomFirst = 14;
    if (movie.size() < headerLength || numberAt(movie, 0) != movie.size())
        return std::nullopt;
    for (const std::size_t track : atomsIn(movie, headerLength, movie.size())) {
        const std::vector<std::size_t> path = descriptionPath(movie, track);
        if (path.empty())
            continue;
        const std::size_t description = path.back();
        const std::size_t end = description + numberAt(movie, description);
        if (end < description + headerLength + picturesLength ||
            find(movie, description, "fiel"sv, picturesLength))
            return std::nullopt;
        const std::string atom = "\0\0\0\x0a"
                                 "fiel\x02"s +
                                 (topFieldFirst ? topFirst : bottomFirst);
        // Some descriptions end their list of atoms with a zero; behind it, no reader looks.
        const auto atoms = atomsIn(movie, description + headerLength + picturesLength, end);
        const std::size_t place = atoms.empty() ? description + headerLength + picturesLength
                                                : atoms.back() + numberAt(movie, atoms.back());
        std::string noted = movie;
        noted.insert(place, atom);
        putNumber(noted, 0, movie.size() + atom.size());
        for (const std::size_t parent : path)
            putNumber(noted, parent, numberAt(movie, parent) + atom.size());
        return noted;
    }
    return std::nullopt;
}

void noteFieldOrder(const std::string &path, bool topFieldFirst)
{
    RandomAccessFile file(path, RandomAccessFile::Access::Change);
    const std::uint64_t size = file.isOpen() ? file.size() : 0;
    std::uint64_t begin = 0;
    std::uint64_t length = 0;
    std::string type;
    while (type != "moov") {
        begin += length;
        if (begin + longHeaderLength > size)
            return;
        const std::string header = file.read(begin, longHeaderLength);
        type = header.substr(4, 4);
        length = numberAt(header, 0);
        if (length == 1)
            length = numberAt(header, headerLength) << 32 | numberAt(header, headerLength + 4);
        if (length < headerLength || length > size - begin)
            return;
    }
    // Behind the movie's samples, it may grow without moving them.
    if (begin + length != size)
        return;
    const auto movie = withFieldOrder(file.read(begin, length), topFieldFirst);
    if (!movie)
        return;
    try {
        file.write(begin, *movie);
    } catch (const std::system_error &) {
        throw Refusal("the order of the fields could not be written into " + path);
    }
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/bextchunk.h"

#include "tooladapter/chunks/wavechunks.h"

#include <algorithm>
#include <string_view>

namespace tooladapter
{
namespace
{

constexpr std::size_t descriptionLength = 256;
constexpr std::size_t timeReferencePosition = 338;
constexpr std::size_t timeReferenceLength = 8;
constexpr std::size_t fieldsLength = 602;           // everything but the coding history
constexpr std::string_view valueEnds = " \t\r\n<&"; // the last two in XML

bool isLowerCase(char letter)
{
    return letter >= 'a' && letter <= 'z';
}

bool isWordPart(char letter)
{
    return isLowerCase(letter) || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9');
}

/// A description with a new speed, in a field of the same length.
std::string changedDescription(const std::string &field, const std::string &speed)
{
    const std::string text = field.substr(0, field.find('\0'));
    std::string changed = withSpeed(text, speed);
    if (changed == text)
        return field; // with all that follows the end of its text
    if (changed.size() > descriptionLength)
        changed = withSpeed(text, {}); // no speed is better than a wrong one
    changed.resize(descriptionLength, '\0');
    return changed;
}

} // namespace

std::optional<std::uint64_t> timeReferenceOf(const std::string &bext)
{
    if (bext.size() < fieldsLength)
        return std::nullopt;
    return numberAt(bext, timeReferencePosition, timeReferenceLength);
}

std::optional<std::string> changedBext(const std::string &source, const WaveChanges &changes,
                                       std::uint64_t start)
{
    if (source.size() < fieldsLength)
        return std::nullopt;
    std::string bext = source;
    if (changes.setsStart)
        bext.replace(timeReferencePosition, timeReferenceLength, numberBytes(start, timeReferenceLength));
    if (!changes.speed.empty())
        bext.replace(0, descriptionLength,
                     changedDescription(bext.substr(0, descriptionLength), changes.speed));
    return bext;
}

std::string withSpeed(std::string text, const std::string &speed)
{
    constexpr std::string_view word = "SPEED=";
    std::size_t found = 0;
    while ((found = text.find(word, found)) != std::string::npos) {
        const std::size_t begin = found + word.size();
        const bool hasPrefix = found > 0 && isLowerCase(text[found - 1]);
        if (hasPrefix && (found == 1 || !isWordPart(text[found - 2]))) {
            const std::size_t end = std::min(text.find_first_of(valueEnds, begin), text.size());
            text.replace(begin, end - begin, speed);
        }
        found = begin;
    }
    return text;
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#include "tooladapter/chunks/ixmlchunk.h"

#include "tooladapter/chunks/bextchunk.h"
#include "tooladapter/chunks/xmlelement.h"
#include "tooladapter/rules/argumentlist.h"

#include <algorithm>
#include <string_view>

namespace tooladapter
{
namespace
{

constexpr std::string_view blankLetters = " \t\r\n";

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(blankLetters), text.size());
    return text.substr(begin, text.find_last_not_of(blankLetters) + 1 - begin);
}

/// A number or word of the chunk: the name of its element and its text.
struct Entry {
    std::string name;
    std::string text;
};

std::string xmlOf(const Entry &entry)
{
    return '<' + entry.name + '>' + entry.text + "</" + entry.name + '>';
}

/// The text of a chunk, and what is to be changed in it.
class IxmlText
{
public:
    explicit IxmlText(std::string_view text) : text(text) {}

    std::string_view contentOf(const XmlElement &element) const
    {
        return text.substr(element.contentBegin, element.contentEnd - element.contentBegin);
    }

    /// Gives all children of \a parent that \a entry names its text, in place. False if there is none.
    bool replace(const XmlElement &parent, const Entry &entry);

    void replace(const XmlElement &element, const std::string &content);

    /// Puts \a entries, one a line if the others are, behind the last child of \a parent.
    void insert(const XmlElement &parent, const std::vector<Entry> &entries);

    /// Removes \a element and the blanks before it.
    void remove(const XmlElement &element);

    std::string changed();

private:
    struct Edit {
        std::size_t begin;
        std::size_t end;
        std::string replacement;
    };

    std::size_t blanksBefore(std::size_t position) const;

    std::string_view text;
    std::vector<Edit> edits; ///< no two of them overlap
};

bool IxmlText::replace(const XmlElement &parent, const Entry &entry)
{
    const auto elements = parent.childrenCalled(entry.name);
    for (const XmlElement *element : elements)
        replace(*element, entry.text);
    return !elements.empty();
}

void IxmlText::replace(const XmlElement &element, const std::string &content)
{
    if (element.contentBegin == element.end) // "<A/>"
        edits.push_back({element.begin, element.end, xmlOf({std::string(element.name), content})});
    else
        edits.push_back({element.contentBegin, element.contentEnd, content});
}

void IxmlText::insert(const XmlElement &parent, const std::vector<Entry> &entries)
{
    if (entries.empty())
        return;
    std::string inserted;
    std::string_view blanks;
    if (!parent.children.empty()) {
        const std::size_t first = parent.children.front().begin;
        blanks = text.substr(blanksBefore(first), first - blanksBefore(first));
    }
    for (const Entry &entry : entries)
        inserted.append(blanks).append(xmlOf(entry));
    if (parent.contentBegin == parent.end) {
        replace(parent, inserted);
        return;
    }
    const std::size_t position = parent.children.empty() ? parent.contentEnd : parent.children.back().end;
    edits.push_back({position, position, inserted});
}

void IxmlText::remove(const XmlElement &element)
{
    edits.push_back({blanksBefore(element.begin), element.end, {}});
}

std::size_t IxmlText::blanksBefore(std::size_t position) const
{
    const std::size_t last = text.find_last_not_of(blankLetters, position - 1);
    return last == std::string_view::npos ? 0 : last + 1;
}

std::string IxmlText::changed()
{
    // Stable: what is inserted behind a replaced element stays behind it.
    std::stable_sort(edits.begin(), edits.end(),
                     [](const Edit &a, const Edit &b) { return a.begin < b.begin; });
    std::string result;
    std::size_t position = 0;
    for (const Edit &edit : edits) {
        result.append(text.substr(position, edit.begin - position)).append(edit.replacement);
        position = edit.end;
    }
    return result.append(text.substr(position));
}

std::vector<Entry> startEntries(const WrittenSound &written)
{
    return {{"TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", std::to_string(written.start >> 32)},
            {"TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", std::to_string(written.start & 0xffffffff)},
            {"TIMESTAMP_SAMPLE_RATE", std::to_string(written.sampleRate)}};
}

std::vector<Entry> speedEntries(const WaveChanges &changes)
{
    std::vector<Entry> entries;
    if (changes.rate.isValid())
        entries.push_back({"TIMECODE_RATE", changes.rate.toText()});
    if (!changes.speed.empty())
        entries.push_back({"TIMECODE_FLAG", changes.isDropFrame() ? "DF" : "NDF"});
    return entries;
}

/// Sets the start and the speed in the "SPEED" elements of \a root; without one, adds it.
void changeSpeed(IxmlText &text, const XmlElement &root, const WaveChanges &changes,
                 const WrittenSound &written)
{
    std::vector<Entry> entries = startEntries(written);
    for (const Entry &entry : speedEntries(changes))
        entries.push_back(entry);
    const auto places = root.childrenCalled("SPEED");
    for (const XmlElement *place : places) {
        std::vector<Entry> missing;
        for (const Entry &entry : entries) {
            if (!text.replace(*place, entry))
                missing.push_back(entry);
        }
        text.insert(*place, missing);
        for (const char *name : {"MASTER_SPEED", "CURRENT_SPEED"}) {
            if (changes.rate.isValid())
                text.replace(*place, Entry{name, changes.rate.toText()});
        }
    }
    if (places.empty()) {
        std::string content;
        for (const Entry &entry : entries)
            content += xmlOf(entry);
        text.insert(root, {{"SPEED", content}});
    }
}

/// The fields of the "bext" chunk that some recorders repeat here.
void changeRepeatedBext(IxmlText &text, const XmlElement &root, const WaveChanges &changes,
                        const WrittenSound &written)
{
    for (const XmlElement *place : root.childrenCalled("BEXT")) {
        text.replace(*place, Entry{"BWF_TIME_REFERENCE_HIGH", std::to_string(written.start >> 32)});
        text.replace(*place, Entry{"BWF_TIME_REFERENCE_LOW", std::to_string(written.start & 0xffffffff)});
        for (const XmlElement *description : place->childrenCalled("BWF_DESCRIPTION")) {
            const std::string old{text.contentOf(*description)};
            const std::string changed = changes.speed.empty() ? old : withSpeed(old, changes.speed);
            if (changed != old)
                text.replace(*description, changed);
        }
    }
}

/// The number in the child of \a track called \a name; 0 without one.
int indexIn(const IxmlText &text, const XmlElement &track, const char *name)
{
    const auto found = track.childrenCalled(name);
    return found.empty() ? 0 : numberFrom(trimmed(text.contentOf(*found.front()))).value_or(0);
}

/// Where the channel at \a place (from 1) of the source is in the written file; 0 if it is left out.
int newPlace(int place, const WaveChanges &changes, int sourceChannels)
{
    const auto &kept = changes.keptChannels;
    if (place > sourceChannels)
        return place - sourceChannels + static_cast<int>(kept.size());
    const auto found = std::find(kept.begin(), kept.end(), place - 1);
    return found == kept.end() ? 0 : static_cast<int>(found - kept.begin()) + 1;
}

void changeTracks(IxmlText &text, const XmlElement &list, const WaveChanges &changes,
                  const WrittenSound &written)
{
    const auto tracks = list.childrenCalled("TRACK");
    // A recorder may count its inputs here; these keep their numbers.
    const bool countsChannels = std::all_of(tracks.begin(), tracks.end(), [&text](const XmlElement *track) {
        const int channel = indexIn(text, *track, "CHANNEL_INDEX");
        const int place = indexIn(text, *track, "INTERLEAVE_INDEX");
        return channel == 0 || place == 0 || channel == place;
    });
    std::size_t left = 0;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const XmlElement &track = *tracks[i];
        int place = indexIn(text, track, "INTERLEAVE_INDEX");
        if (place == 0 && countsChannels)
            place = indexIn(text, track, "CHANNEL_INDEX");
        if (place == 0)
            place = static_cast<int>(i) + 1;
        place = newPlace(place, changes, written.sourceChannels);
        if (place == 0) {
            text.remove(track);
            continue;
        }
        ++left;
        text.replace(track, Entry{"INTERLEAVE_INDEX", std::to_string(place)});
        if (countsChannels)
            text.replace(track, Entry{"CHANNEL_INDEX", std::to_string(place)});
    }
    text.replace(list, Entry{"TRACK_COUNT", std::to_string(left)});
}

} // namespace

std::optional<std::string> changedIxml(const std::string &source, const WaveChanges &changes,
                                       const WrittenSound &written)
{
    const std::string_view whole = source;
    const std::size_t textLength = std::min(whole.find('\0'), whole.size()); // room that a recorder has left
    const auto root = parseXml(whole.substr(0, textLength));
    if (!root || root->name != "BWFXML")
        return std::nullopt;

    IxmlText text(whole.substr(0, textLength));
    if (changes.setsStart) {
        changeSpeed(text, *root, changes, written);
        changeRepeatedBext(text, *root, changes, written);
    }
    if (written.bits) {
        for (const XmlElement *place : root->childrenCalled("SPEED"))
            text.replace(*place, Entry{"AUDIO_BIT_DEPTH", std::to_string(*written.bits)});
    }
    if (!changes.keptChannels.empty()) {
        for (const XmlElement *list : root->childrenCalled("TRACK_LIST"))
            changeTracks(text, *list, changes, written);
    }
    return text.changed().append(whole.substr(textLength));
}

} // namespace tooladapter

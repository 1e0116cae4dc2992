// SPDX-License-Identifier: MIT
#include "tooladapter/rules/tagrules.h"

#include "tooladapter/rules/names.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

// What the tool makes itself, or what describes another container.
constexpr std::array containerTags{"major_brand"sv, "minor_version"sv, "compatible_brands"sv};
constexpr std::array programTags{"company_name"sv, "product_name"sv, "product_version"sv};

// What QuickTime files hold without keys of their own, and what the tool fills in itself.
constexpr std::array plainTags{"title"sv,   "artist"sv,        "album"sv,   "comment"sv, "date"sv,
                               "genre"sv,   "copyright"sv,     "make"sv,    "model"sv,   "location"sv,
                               "encoder"sv, "creation_time"sv, "timecode"sv};

/// \a key without the language that some carry, "location-eng".
std::string_view withoutLanguage(std::string_view key)
{
    constexpr std::size_t length = 4;
    return key.size() > length && key[key.size() - length] == '-' ? key.substr(0, key.size() - length) : key;
}

bool isPlain(const std::string &key)
{
    return isOneOf(containerTags, key) || isOneOf(plainTags, withoutLanguage(key));
}

constexpr std::string_view commentPrefix = "comment_"; // of the tool's names for comments of MXF packages

/// Whether an MXF file holds the note \a key of another kind of file as a comment. For the others it has a
/// place of their own, or the tool does.
bool becomesComment(const std::string &key)
{
    constexpr std::array others{"encoder"sv, "creation_time"sv, "timecode"sv, "reel_name"sv};
    return !isOneOf(containerTags, key) && !isOneOf(others, key) && !key.starts_with(commentPrefix);
}

bool makesComments(const std::string &input, const std::string &output)
{
    return containerOf(output) == Container::Mxf && containerOf(input) != Container::Mxf;
}

bool holdsTimecode(const std::string &key)
{
    return lowerCase(key).find("timecode") != std::string::npos;
}

Option without(const std::string &key)
{
    return {"-metadata", key + '='};
}

/// The notes of \a source as comments, but those that hold a timecode where \a dropsTimecodes is set. All
/// together must fit into a command, and each into 64 KiB of UTF-16; what goes beyond is left out.
Options comments(const Source &source, bool dropsTimecodes)
{
    std::size_t room = 30'000; // [bytes]
    Options options;
    for (const auto &[key, text] : source.notes) {
        const std::size_t size = key.size() + text.size();
        if (!becomesComment(key) || (dropsTimecodes && holdsTimecode(key)) || text == omittedNote ||
            size > room)
            continue;
        room -= size;
        options.push_back({"-metadata", std::string(commentPrefix).append(key).append("=").append(text)});
    }
    return options;
}

/// The time of recording where \a source names it twice, for the movie and as a key: newer tools list both,
/// which no container takes. Empty where it stands alone.
Options singleTime(const Source &source)
{
    const auto found = source.notes.find("creation_time");
    const std::size_t end = found == source.notes.end() ? std::string::npos : found->second.find(';');
    if (end == std::string::npos)
        return {};
    return {{"-metadata", "creation_time=" + found->second.substr(0, end)}};
}

std::string reelOf(const Source &source)
{
    const auto found = std::find_if(source.streams.begin(), source.streams.end(),
                                    [](const Stream &stream) { return !stream.reel.empty(); });
    return found == source.streams.end() ? std::string() : found->reel;
}

} // namespace

bool lacksNotes(const Source &source, const std::string &input, const std::string &output)
{
    return makesComments(input, output) &&
           std::any_of(source.notes.begin(), source.notes.end(), [](const auto &note) {
               return note.second == omittedNote && becomesComment(note.first);
           });
}

Options tagOptions(const ExportPlan &plan, const Source &source, int picture, const Hints &hints)
{
    if (plan.container != Container::QuickTime && plan.container != Container::Mxf)
        return plan.metadata;

    const bool isQuickTime = plan.container == Container::QuickTime;
    const bool dropsTimecodes = plan.timecode || hints.isUnread;
    const bool hasKeys = isQuickTime && !std::all_of(source.notes.begin(), source.notes.end(),
                                                     [](const auto &note) { return isPlain(note.first); });
    Options options{
        {"-map_metadata", "0"}}; // named, since the tool leaves the time of recording out otherwise
    if (dropsTimecodes) {
        options.push_back({"-metadata:s", "timecode="});
        options.push_back(without("timecode"));
    }
    for (const auto &[key, text] : source.notes) {
        const bool isOld = dropsTimecodes && holdsTimecode(key) && key != "timecode";
        const bool isForeign =
            hasKeys ? isOneOf(containerTags, key) : !isQuickTime && isOneOf(programTags, key);
        if (isOld || isForeign)
            options.push_back(without(key));
    }
    append(options, singleTime(source));
    if (makesComments(plan.input, plan.output))
        append(options, comments(source, dropsTimecodes));
    const std::string reel = reelOf(source);
    // QuickTime files hold it with the timecode track, MXF files as a package of their own.
    if (picture >= 0 && !reel.empty())
        options.push_back({isQuickTime ? "-metadata:s:v:0" : "-metadata", "reel_name=" + reel});
    // Keys hold every note; and without a picture there is no timecode track, only a note.
    if (hasKeys || (isQuickTime && picture < 0 && plan.timecode))
        options.push_back({"-movflags", "use_metadata_tags"});
    return options;
}

} // namespace tooladapter

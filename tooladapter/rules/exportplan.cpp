// SPDX-License-Identifier: MIT
#include "tooladapter/rules/exportplan.h"

#include "tooladapter/rules/names.h"
#include "tooladapter/rules/refusal.h"

#include <algorithm>

namespace tooladapter
{
namespace
{

const Stream &audioStreamOf(const Source &source, int index)
{
    if (index >= static_cast<int>(source.streams.size()) || source.at(index).kind != Stream::Kind::Audio)
        throw Refusal("the source has no audio stream " + std::to_string(index));
    return source.at(index);
}

/// The "-map_channel" words that belong to one stream.
struct ChannelGroup {
    std::optional<int> singledOut; ///< of the word "-0.s.c"
    std::vector<int> listed;       ///< of the words "0.s.ch:0.k"

    void add(const std::string &value);
    int timecodeChannel(const Stream &stream) const;
};

void ChannelGroup::add(const std::string &value)
{
    const std::string word = value.substr(0, value.find(':'));
    const std::size_t dot = word.find('.');
    const auto position = dot == std::string::npos ? std::nullopt : channelFromText(word.substr(dot + 1));
    if (!position)
        throw Refusal("the channel \"" + value + "\" is not understood");
    if (word.starts_with('-'))
        singledOut = position->second;
    else
        listed.push_back(position->second);
}

/// Follows the application's own rule: of two channels that are a stereo layout or big-endian PCM it singles
/// out the one that is to stay, of all others the timecode's own.
int ChannelGroup::timecodeChannel(const Stream &stream) const
{
    const bool isPair =
        stream.layout == "stereo" || (stream.channels == 2 && stream.codec.find("be") != std::string::npos);
    if (singledOut)
        return isPair ? 1 - *singledOut : *singledOut;
    for (int channel = 0; channel < stream.channels; ++channel) {
        if (std::find(listed.begin(), listed.end(), channel) == listed.end())
            return channel;
    }
    throw Refusal("no channel of the stream is named as the timecode's");
}

std::vector<int> channelsWithout(int count, int dropped)
{
    std::vector<int> channels;
    for (int channel = 0; channel < count; ++channel) {
        if (channel != dropped)
            channels.push_back(channel);
    }
    return channels;
}

/// Takes what "-map" names into \a plan; an audio stream gets a group of its own in \a groups.
void addMapped(const std::string &value, ExportPlan &plan, std::vector<ChannelGroup> &groups)
{
    plan.streamsAreNamed = true;
    const auto stream = mappedStream(value);
    if (stream) {
        plan.tracks.push_back({*stream, {}, {}});
        groups.emplace_back();
    } else if (value == "0:v") {
        plan.takesPicture = true;
    } else if (value != "-0:d") { // data streams are not taken unless they are named
        throw Refusal("the stream \"" + value + "\" is not understood");
    }
}

/// The channels of the source's audio stream \a index that stay, by \a group and by what the application
/// knows of the timecode's place; empty where all do.
std::vector<int> keptChannels(const ChannelGroup &group, int index, const Stream &stream,
                              std::optional<ChannelPosition> timecodeChannel)
{
    if (!group.singledOut && group.listed.empty())
        return {};
    const bool isKnown = timecodeChannel && timecodeChannel->first == index;
    const int channel = isKnown ? timecodeChannel->second : group.timecodeChannel(stream);
    if (channel < 0 || channel >= stream.channels || stream.channels < 2)
        throw Refusal("the audio stream " + std::to_string(index) + " has no channel " +
                      std::to_string(channel) + " among others");
    return channelsWithout(stream.channels, channel);
}

} // namespace

Container containerOf(const std::string &path)
{
    const std::string suffix = lowerCase(path.substr(std::min(path.rfind('.'), path.size())));
    if (suffix == ".mov")
        return Container::QuickTime;
    if (suffix == ".mxf")
        return Container::Mxf;
    return suffix == ".wav" ? Container::Wave : Container::Other;
}

std::optional<std::string> noteIn(const Options &metadata, const std::string &key)
{
    const std::string beginning = key + '=';
    const auto found = std::find_if(metadata.begin(), metadata.end(), [&beginning](const Option &option) {
        return option.name == "-metadata" && option.value.starts_with(beginning);
    });
    return found == metadata.end() ? std::nullopt : std::optional(found->value.substr(beginning.size()));
}

ExportPlan planOf(const ArgumentList &list, const Source &source, const Hints &hints)
{
    const Output &output = list.outputs.front();
    ExportPlan plan;
    plan.input = list.input;
    plan.output = output.path;
    plan.container = containerOf(output.path);

    std::vector<ChannelGroup> groups; // one for every track
    for (const Option &option : output.options) {
        if (option.name == "-map") {
            addMapped(option.value, plan, groups);
        } else if (option.name == "-map_channel" && !groups.empty()) {
            groups.back().add(option.value);
        } else if (option.name == "-acodec") {
            (plan.tracks.empty() ? plan.commonCodec : plan.tracks.back().codec) = option.value;
        } else if (option.name == "-timecode") {
            plan.timecode = option.value;
        } else if (option.name == "-r" && plan.timecode) {
            plan.readerRate = option.value; // before the timecode stands the codec's own rate
        } else if (option.name == "-metadata" || option.name == "-map_metadata" ||
                   option.name == "-write_bext") {
            plan.metadata.push_back(option);
        } else {
            plan.pictureOptions.push_back(option);
        }
    }

    for (std::size_t i = 0; i < groups.size(); ++i) {
        AudioTrack &track = plan.tracks[i];
        track.channels =
            keptChannels(groups[i], track.stream, audioStreamOf(source, track.stream), hints.timecodeChannel);
    }
    return plan;
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#include "tooladapter/exportrules.h"

#include "tooladapter/refusal.h"
#include "tooladapter/starttimecode.h"
#include "tooladapter/trackrules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace tooladapter
{
namespace
{

// Shares by which two rates of pictures may differ and be meant for one.
constexpr double frameTolerance = 0.1;    // a base rate that is farther off counts fields
constexpr double pictureTolerance = 0.05; // a rate that is farther off is another picture's

bool isCopied(const ExportPlan &plan)
{
    return std::any_of(plan.pictureOptions.begin(), plan.pictureOptions.end(), [](const Option &option) {
        return option.name == "-vcodec" && option.value == "copy";
    });
}

/// The rate that the coder was given; an invalid one where it was given none.
FrameRate codedRate(const ExportPlan &plan)
{
    const auto found = std::find_if(plan.pictureOptions.begin(), plan.pictureOptions.end(),
                                    [](const Option &option) { return option.name == "-r"; });
    return found == plan.pictureOptions.end() ? FrameRate{} : FrameRate::fromText(found->value);
}

bool differs(const FrameRate &rate, const FrameRate &other, double tolerance)
{
    return rate.isValid() && other.isValid() &&
           std::abs(1.0 - rate.perSecond() / other.perSecond()) > tolerance;
}

/// The rate at which \a picture will run in the written file.
FrameRate pictureRate(const ExportPlan &plan, const Stream &picture)
{
    const FrameRate coded = codedRate(plan);
    if (coded.isValid())
        return coded;
    // A copy keeps its time stamps. A coder makes a constant rate of a wavering one, but takes frames, not
    // fields.
    const bool hasAverage = picture.averageRate.isValid();
    if (hasAverage && (isCopied(plan) || differs(picture.averageRate, picture.baseRate, frameTolerance)))
        return picture.averageRate;
    return picture.baseRate.isValid() ? picture.baseRate : picture.averageRate;
}

std::string startTimecode(const ExportPlan &plan, const Source &source, int picture,
                          const FrameRate &timecodeRate)
{
    const StartTimecode timecode = StartTimecode::fromText(*plan.timecode);
    FrameRate counted = timecodeRate;
    if (plan.readerRate) {
        counted = FrameRate::fromText(*plan.readerRate);
        if (!counted.isValid())
            throw Refusal("the frame rate of the timecode " + timecode.toText() + " is not known");
    }
    if (picture < 0) {
        const FrameRate own = counted.isValid() ? counted : FrameRate{30000, 1001};
        return timecodeAtRate(timecode, own.nominal(), own);
    }
    const FrameRate rate = pictureRate(plan, source.streams[static_cast<std::size_t>(picture)]);
    if (!rate.isValid())
        throw Refusal("the frame rate of the picture is not known");
    return timecodeAtRate(timecode,
                          counted.isValid() ? counted.nominal() : impliedNominalRate(timecode, rate), rate);
}

void checkPicture(const ExportPlan &plan, const Source &source, int picture)
{
    if (picture < 0 && plan.container == Container::Mxf)
        throw Refusal(plan.input + " has no picture, and MXF files are not written without one");
    if (picture < 0 && plan.tracks.empty())
        throw Refusal("nothing of " + plan.input + " is left to be written");
    // The list's rate may be that of another picture in the file.
    if (picture >= 0 && differs(codedRate(plan), source.streams[static_cast<std::size_t>(picture)].baseRate,
                                pictureTolerance))
        throw Refusal("the picture of " + plan.input + " does not run at the rate that is to be coded");
}

/// The filters that lay the sound of \a stream beside the picture in an MXF file. That cannot say that a
/// stream begins later than the others, and it ends with its shortest one.
std::vector<std::string> placingFilters(const Source &source, int stream, int picture)
{
    const double delay = source.delayOf(stream);
    if (delay > longestSilence)
        throw Refusal("the audio stream " + std::to_string(stream) + " begins too long after the picture");
    return {delayFilter(delay), endingFilter(source.endOf(picture) - source.endOf(stream))};
}

/// What is done to the samples of \a track; empty where nothing is.
std::string filterOf(const AudioTrack &track, const ExportPlan &plan, const Source &source, int picture)
{
    std::string chain = track.channels.empty() ? std::string() : channelFilter(track);
    if (plan.container != Container::Mxf)
        return chain;
    for (const std::string &filter : placingFilters(source, track.stream, picture)) {
        if (!chain.empty() && !filter.empty())
            chain += ',';
        chain += filter;
    }
    return chain;
}

/// The options that name the streams to take; tells \a result what the audio streams must hold.
Options pictureAndTracks(const ExportPlan &plan, const Source &source, Export &result)
{
    Options options;
    if (result.pictureStream >= 0)
        options.push_back({"-map", "0:" + std::to_string(result.pictureStream)});
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const AudioTrack &track = plan.tracks[i];
        const std::string number = std::to_string(i);
        options.push_back({"-map", "0:" + std::to_string(track.stream)});
        if (!track.codec.empty())
            options.push_back({"-c:a:" + number, track.codec});
        const std::string filter = filterOf(track, plan, source, result.pictureStream);
        if (!filter.empty())
            options.push_back({"-filter:a:" + number, filter});
        const int all = source.streams[static_cast<std::size_t>(track.stream)].channels;
        result.audio.push_back(
            {track.stream, track.channels.empty() ? all : static_cast<int>(track.channels.size())});
    }
    return options;
}

/// The position \a samples, counted since midnight at \a counted samples a second, at the rate \a own: the
/// same time of day.
std::int64_t samplesAtRate(std::int64_t samples, int counted, int own)
{
    constexpr std::int64_t secondsOfDay = 86400;
    const std::int64_t day = secondsOfDay * counted;
    samples %= day;
    return (samples * own + counted / 2) / counted % (secondsOfDay * own);
}

/// The time reference of a sound file that took its timecode over from another one counts that file's
/// samples.
void countAtOwnRate(Options &metadata, const Source &source, int counted)
{
    constexpr std::string_view key = "time_reference=";
    const std::vector<int> sounds = source.audioStreams();
    const int own = sounds.empty() ? 0 : source.streams[static_cast<std::size_t>(sounds.front())].sampleRate;
    if (counted <= 0 || own <= 0 || own == counted)
        return;
    for (Option &option : metadata) {
        if (!option.value.starts_with(key))
            continue;
        const std::int64_t samples = std::strtoll(option.value.c_str() + key.size(), nullptr, 10);
        if (samples < 0)
            throw Refusal("the time reference " + std::to_string(samples) + " is no time of day");
        option.value = std::string(key) + std::to_string(samplesAtRate(samples, counted, own));
    }
}

/// What the kind of file needs to hold all that it is given.
void addContainerOptions(Options &options, const ExportPlan &plan, bool hasPicture)
{
    if (plan.container == Container::Mxf)
        options.push_back({"-ar", "48000"}); // the only rate that can be written
    if (plan.container == Container::Wave)
        options.push_back({"-rf64", "auto"}); // long takes pass 4 GiB
    if (plan.container == Container::QuickTime && !hasPicture && plan.timecode)
        options.push_back({"-movflags", "use_metadata_tags"}); // without a picture there is no timecode track
}

} // namespace

std::string filePath(const std::string &path)
{
    const bool isMisread = path.starts_with('-') || path.find(':') < path.find('/');
    return isMisread ? "./" + path : path;
}

Export exportOf(ExportPlan plan, const Source &source, const Hints &hints)
{
    takeAllStreams(plan, source);
    chooseCodecs(plan, source, hints.sound);
    countAtOwnRate(plan.metadata, source, hints.timecodeSampleRate);
    Export result;
    result.path = filePath(plan.output);
    result.pictureStream = plan.takesPicture ? source.firstPicture() : -1;
    checkPicture(plan, source, result.pictureStream);

    Options options = pictureAndTracks(plan, source, result);
    addContainerOptions(options, plan, result.pictureStream >= 0);
    options.insert(options.end(), plan.metadata.begin(), plan.metadata.end());
    if (result.pictureStream >= 0)
        options.insert(options.end(), plan.pictureOptions.begin(), plan.pictureOptions.end());
    if (plan.timecode) {
        result.timecode = startTimecode(plan, source, result.pictureStream, hints.timecodeRate);
        options.push_back({"-timecode", result.timecode});
    }
    Options general{{"-y", {}}};
    // A copy stops at the first error; a coder may meet damaged pictures and go on after them.
    if (result.pictureStream < 0 || isCopied(plan))
        general.push_back({"-xerror", {}});
    result.arguments = renderArguments({general, filePath(plan.input), {{options, result.path}}});
    return result;
}

} // namespace tooladapter

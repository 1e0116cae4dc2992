// SPDX-License-Identifier: MIT
#include "tooladapter/rules/exportrules.h"

#include "tooladapter/rules/picturecodec.h"
#include "tooladapter/rules/picturefilter.h"
#include "tooladapter/rules/refusal.h"
#include "tooladapter/rules/starttimecode.h"
#include "tooladapter/rules/tagrules.h"
#include "tooladapter/rules/trackrules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace tooladapter
{
namespace
{

// Tools that work at once where there are few processors: one that waits for its disk leaves room for
// another.
constexpr int fewestTogether = 4;

// Shares by which two rates of pictures may differ and be meant for one.
constexpr double frameTolerance = 0.1;    // a base rate that is farther off counts fields
constexpr double pictureTolerance = 0.05; // a rate that is farther off is another picture's

/// The rate that the coder was given; an invalid one where it was given none.
FrameRate codedRate(const ExportPlan &plan)
{
    return FrameRate::fromText(valueOf(plan.pictureOptions, "-r"));
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
    const FrameRate rate = pictureRate(plan, source.at(picture));
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
    if (picture >= 0 && differs(codedRate(plan), source.at(picture).frameRate(), pictureTolerance))
        throw Refusal("the picture of " + plan.input + " does not run at the rate that is to be coded");
}

/// The filters that align the sound of \a stream with the picture in an MXF file. That cannot say that a
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

/// The options that name the streams to take.
Options pictureAndTracks(const ExportPlan &plan, const Source &source, int picture)
{
    Options options;
    if (picture >= 0)
        options.push_back({"-map", "0:" + std::to_string(picture)});
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const AudioTrack &track = plan.tracks[i];
        const std::string number = std::to_string(i);
        options.push_back({"-map", "0:" + std::to_string(track.stream)});
        if (!track.codec.empty())
            options.push_back({"-c:a:" + number, track.codec});
        if (track.bitRate > 0)
            options.push_back({"-b:a:" + number, std::to_string(track.bitRate)});
        const std::string filter = filterOf(track, plan, source, picture);
        if (!filter.empty())
            options.push_back({"-filter:a:" + number, filter});
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
    const int own = sounds.empty() ? 0 : source.at(sounds.front()).sampleRate;
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
Options containerOptions(Container container)
{
    if (container == Container::Mxf)
        return {{"-ar", "48000"}}; // the only rate that can be written
    if (container == Container::Wave)
        return {{"-rf64", "auto"}}; // long takes pass 4 GiB
    return {};
}

/// The codec of \a picture and how the tool gets there.
Options pictureOptions(const ExportPlan &plan, const Stream &picture)
{
    Options options = plan.pictureOptions;
    if (!isCopied(plan) && hasOption(options, "-vcodec"))
        append(options, pictureTreatment(plan.pictureOptions, picture));
    return options;
}

/// Whether the written \a picture is interlaced.
bool isInterlaced(const ExportPlan &plan, const Stream &picture)
{
    return isCopied(plan) ? picture.isInterlaced() : keepsFields(plan.pictureOptions, picture);
}

/// How many threads each tool of a batch may use, so that all together use the machine once; 0 = as it likes.
int threadsOf(const Hints &hints)
{
    constexpr int mostTogether = 45; // that the application lets run
    if (hints.batchSize < 1 || hints.processors < 1)
        return 0;
    const int threads = std::max(1, hints.processors / std::min(hints.batchSize, mostTogether));
    return threads < hints.processors ? threads : 0;
}

/// What the written file must hold in the end.
Export expectedFile(const ExportPlan &plan, const Source &source, int picture, const FrameRate &timecodeRate)
{
    Export result;
    result.path = filePath(plan.output);
    result.pictureStream = picture;
    result.copiesPicture = picture >= 0 && isCopied(plan);
    result.notesFields =
        picture >= 0 && plan.container == Container::QuickTime && isInterlaced(plan, source.at(picture));
    for (const AudioTrack &track : plan.tracks) {
        const std::size_t kept = track.channels.size();
        result.audio.push_back(
            {track.stream, kept == 0 ? source.at(track.stream).channels : static_cast<int>(kept)});
    }
    if (plan.timecode)
        result.timecode = startTimecode(plan, source, picture, timecodeRate);
    if (plan.container == Container::Wave && hasOption(plan.metadata, "-write_bext"))
        result.timeReference = noteIn(plan.metadata, "time_reference").value_or(std::string());
    return result;
}

/// The options before the source. A copy stops at the first error; a coder may meet damaged pictures and go
/// on after them.
Options generalOptions(bool isCoded, int threads)
{
    Options options{{"-y", {}}};
    if (!isCoded)
        options.push_back({"-xerror", {}});
    if (threads > 0) {
        options.push_back({"-filter_threads", std::to_string(threads)});
        options.push_back({"-threads", std::to_string(threads)}); // of the decoder
    }
    return options;
}

} // namespace

std::string filePath(const std::string &path)
{
    const bool isMisread = path.starts_with('-') || path.find(':') < path.find('/');
    return isMisread ? "./" + path : path;
}

Export exportOf(ExportPlan plan, const Source &source, const Hints &hints)
{
    takeAllStreams(plan, source, hints);
    chooseCodecs(plan, source, hints.sound);
    countAtOwnRate(plan.metadata, source, hints.timecodeSampleRate);
    const int picture = plan.takesPicture ? source.firstPicture() : -1;
    if (picture >= 0)
        choosePictureCodec(plan, source.at(picture), hints.picture);
    checkPicture(plan, source, picture);

    Options options = pictureAndTracks(plan, source, picture);
    append(options, containerOptions(plan.container));
    append(options, tagOptions(plan, source, picture, hints));
    if (picture >= 0)
        append(options, pictureOptions(plan, source.at(picture)));
    Export result = expectedFile(plan, source, picture, hints.timecodeRate);
    if (plan.timecode)
        options.push_back({"-timecode", result.timecode});
    const bool isCoded = picture >= 0 && !result.copiesPicture;
    const int threads = isCoded ? threadsOf(hints) : 0;
    if (threads > 0)
        options.push_back({"-threads", std::to_string(threads)}); // of the coder
    if (isCoded && hints.batchSize > 0)
        result.together = std::max(fewestTogether, hints.processors);
    result.arguments =
        renderArguments({generalOptions(isCoded, threads), filePath(plan.input), {{options, result.path}}});
    return result;
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT

// Single frames lie: a disturbance may show a sync word where none is, or change a digit. What cannot be
// faked is a row of frames whose numbers grow exactly as the clock says. For each way of counting (24, 25,
// 30, drop-frame) the frames are turned into counts since midnight; the difference between a frame's count
// and its place in time is the same for all frames that belong together. The way of counting under which most
// frames agree is the true one: a frame number that returns to zero after 23, 24 or 29 decides it at
// any speed. Only where no return was seen does the speed decide. NTSC rates differ from whole ones by one in
// a thousand, which the fit of all frame starts distinguishes.

#include "ltcreader/edge/labeltrack.h"

#include "ltcreader/frame/rateclass.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <map>
#include <numbers>

namespace ltcreader
{
namespace
{

constexpr std::size_t shortestTrack = 3; // [frames] fewer could agree by chance
constexpr std::size_t longTrack = 6;     // [frames] enough without any other sign
constexpr double clearBit = 0.2;         // [bits] half a bit and a whole one differ by 0.25 from their middle
constexpr int toleratedBefore = 1;       // [frames] misread while the slicer finds the level
constexpr int toleratedWithin = 1;       // [frames] misread in a long track
constexpr int tellingPairs = 5;          // of clean neighbouring frames: their labels show how they move

struct Member {
    const Frame *frame;
    std::int64_t place; // [frames] since the first frame, from its time
    std::int64_t count; // [frames] since midnight, from its label
};

double medianLength(const std::vector<Frame> &frames)
{
    std::vector<double> lengths;
    lengths.reserve(frames.size());
    for (const Frame &frame : frames) {
        lengths.push_back(frame.end - frame.start);
    }
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::nth_element(lengths.begin(), middle, lengths.end());
    return *middle;
}

/// Where in a frame's time frames begin [samples], as the mean of all; single false frames move it little.
double meanPhase(const std::vector<Frame> &frames, double length)
{
    std::complex<double> sum = 0.0;
    for (const Frame &frame : frames)
        sum += std::polar(1.0, 2.0 * std::numbers::pi * frame.start / length);
    return std::arg(sum) / (2.0 * std::numbers::pi) * length;
}

/// Whether \a earlier is timecode of its own, which ends where \a later begins.
bool isJumpedFrom(const std::vector<Member> &earlier, const std::vector<Member> &later)
{
    return earlier.size() >= longTrack && earlier.back().place < later.front().place;
}

/// The frames that agree on one offset between count and place: the largest of several such groups, or the
/// earliest from which the timecode jumped there.
std::vector<Member> agreeingFrames(const std::vector<Frame> &frames, const timecode::Rate &rate,
                                   double length)
{
    std::map<std::int64_t, std::vector<Member>> groups;
    const std::int64_t day = framesPerDay(rate);
    const double phase = meanPhase(frames, length);
    for (const Frame &frame : frames) {
        const auto label = labelOf(frame.bits);
        if (!label || !isLabel(*label, rate))
            continue;
        const std::int64_t place = std::llround((frame.start - phase) / length);
        const std::int64_t count = frameCount(*label, rate);
        groups[((count - place) % day + day) % day].push_back({&frame, place, count});
    }
    if (groups.empty())
        return {};
    const auto largest = std::max_element(groups.begin(), groups.end(), [](const auto &a, const auto &b) {
        return a.second.size() < b.second.size();
    });
    const std::vector<Member> *chosen = &largest->second;
    for (const auto &[offset, group] : groups) {
        if (isJumpedFrom(group, largest->second) && group.front().place < chosen->front().place)
            chosen = &group;
    }
    return *chosen;
}

/// Least squares line through the frame starts.
void fitLine(const std::vector<Member> &members, LabelTrack &track)
{
    const auto n = static_cast<double>(members.size());
    double meanPlace = 0.0;
    double meanStart = 0.0;
    for (const Member &member : members) {
        meanPlace += static_cast<double>(member.place) / n;
        meanStart += member.frame->start / n;
    }
    double products = 0.0;
    double squares = 0.0;
    for (const Member &member : members) {
        const double place = static_cast<double>(member.place) - meanPlace;
        products += place * (member.frame->start - meanStart);
        squares += place * place;
    }
    track.frameLength = products / squares;
    double residuals = 0.0;
    double jitter = 0.0; // [samples squared] of starts, each at the end of a line through 80 edges
    for (const Member &member : members) {
        const double place = static_cast<double>(member.place) - meanPlace;
        residuals += std::pow(member.frame->start - meanStart - track.frameLength * place, 2.0);
        jitter += 4.0 / bitsPerFrame *
                  std::pow(member.frame->rmsJitter * track.frameLength / bitsPerFrame, 2.0) / n;
    }
    track.lengthDeviation = std::sqrt(std::max(residuals / (n - 2.0), jitter) / squares);
    const double startPlace = meanPlace - meanStart / track.frameLength;
    track.startCount = startPlace + static_cast<double>(members.front().count - members.front().place);
}

LabelTrack describe(const std::vector<Member> &members, const timecode::Rate &rate)
{
    LabelTrack track;
    track.rate = rate;
    fitLine(members, track);
    track.frames = static_cast<int>(members.size());
    track.first = members.front().frame->start;
    track.last = members.back().frame->end;
    track.bits = members.front().frame->bits;
    int inverted = 0;
    int row = 0;
    for (std::size_t i = 0; i < members.size(); ++i) {
        const Member &member = members[i];
        track.rmsJitter += std::pow(member.frame->rmsJitter, 2.0) / track.frames;
        if (!member.frame->startsRising)
            ++inverted;
        row = i > 0 && member.place == members[i - 1].place + 1 ? row + 1 : 1;
        track.longestRun = std::max(track.longestRun, row);
        if (i > 0 && labelOf(member.frame->bits)->frames < labelOf(members[i - 1].frame->bits)->frames) {
            ++track.wraps;
        }
    }
    track.rmsJitter = std::sqrt(track.rmsJitter);
    track.inverted = 2 * inverted > track.frames;
    return track;
}

/// How badly the speed fits a way of counting. Where it fits none well the user's word counts more.
double speedMismatch(const LabelTrack &track, int sampleRate, const std::optional<timecode::Rate> &wanted)
{
    const double error = speedError(track.frameLength, track.rate, sampleRate);
    const bool named = wanted && wanted->base == track.rate.base;
    return named ? std::min(error, speedMatters) : error;
}

/// Whether the label of \a next is one higher than that of \a frame.
bool isOneHigher(const Frame &frame, const Frame &next)
{
    const auto label = labelOf(frame.bits);
    const auto nextLabel = labelOf(next.bits);
    if (!label || !nextLabel)
        return false;
    return std::any_of(waysOfCounting.begin(), waysOfCounting.end(), [&](const timecode::Rate &way) {
        return isLabel(*label, way) && labelAt(frameCount(*label, way) + 1, way) == *nextLabel;
    });
}

/// Whether \a next follows \a frame without a gap, its label one higher.
bool follows(const Frame &frame, const Frame &next)
{
    const double gap = std::abs(next.start - frame.end) / (frame.end - frame.start);
    return gap <= cleanJitter / bitsPerFrame && isOneHigher(frame, next);
}

bool isClear(const Frame &frame)
{
    return frame.rmsJitter < cleanJitter && frame.peakJitter < clearBit;
}

/// The digits of the label, whether they are a time of day or not.
FrameBits labelBits(FrameBits bits)
{
    constexpr std::array<BitField, 8> digits{field::frameUnits, field::frameTens,   field::secondUnits,
                                             field::secondTens, field::minuteUnits, field::minuteTens,
                                             field::hourUnits,  field::hourTens};
    FrameBits mask = 0;
    for (const BitField &digit : digits)
        mask |= ((FrameBits{1} << digit.width) - 1) << digit.first;
    return bits & mask;
}

/// The first frames that count up without a gap and with edges that cannot be mistaken; empty when there are
/// none.
std::vector<Frame> firstClearRun(const std::vector<Frame> &frames)
{
    std::vector<Frame> run;
    for (const Frame &frame : frames) {
        if (isClear(frame) && !run.empty() && follows(run.back(), frame)) {
            run.push_back(frame);
            continue;
        }
        if (run.size() >= shortestTrack)
            return run;
        run.clear();
        if (isClear(frame))
            run.push_back(frame);
    }
    return run.size() >= shortestTrack ? run : std::vector<Frame>();
}

/// How far the label of \a frame is from the line of \a track [frames], the shorter way round the day; none
/// where the rate has no such label.
std::optional<std::int64_t> distanceFromLine(const LabelTrack &track, const Frame &frame)
{
    const auto label = labelOf(frame.bits);
    if (!label || !isLabel(*label, track.rate))
        return std::nullopt;
    const std::int64_t expected = std::llround(track.startCount + frame.start / track.frameLength);
    const auto distance = static_cast<double>(frameCount(*label, track.rate) - expected);
    return std::llround(std::remainder(distance, static_cast<double>(framesPerDay(track.rate))));
}

bool majorityHasDropFlag(const std::vector<Member> &members)
{
    const auto flagged = std::count_if(members.begin(), members.end(), [](const Member &member) {
        return fieldValue(member.frame->bits, field::dropFrame) != 0;
    });
    return 2 * static_cast<std::size_t>(flagged) > members.size();
}

} // namespace

std::optional<LabelTrack> findTrack(const std::vector<Frame> &frames, int sampleRate,
                                    const std::optional<timecode::Rate> &wanted)
{
    if (frames.size() < shortestTrack)
        return std::nullopt;
    const double length = medianLength(frames);
    std::optional<LabelTrack> best;
    double leastError = 0.0;
    for (const timecode::Rate &way : waysOfCounting) {
        const std::vector<Member> members = agreeingFrames(frames, way, length);
        if (members.size() < shortestTrack)
            continue;
        if (way.base == 30 && majorityHasDropFlag(members) != way.dropFrame)
            continue;
        const LabelTrack track = describe(members, way);
        const double error = speedMismatch(track, sampleRate, wanted);
        if (!best || track.frames > best->frames || (track.frames == best->frames && error < leastError)) {
            best = track;
            leastError = error;
        }
    }
    const std::vector<Frame> run = firstClearRun(frames);
    const bool ownTimecode = !run.empty() && run.size() < frames.size();
    if (ownTimecode && (!best || run.back().start < best->first))
        return findTrack(run, sampleRate, wanted);
    if (!best)
        return std::nullopt;
    if (!setRateClass(*best, sampleRate, wanted))
        return std::nullopt;
    best->outliers =
        static_cast<int>(std::count_if(
            frames.begin(), frames.end(),
            [&](const Frame &frame) { return frame.start >= best->first && frame.end <= best->last; })) -
        best->frames;
    return best;
}

Doubt doubtAboutLabels(const std::vector<Frame> &frames)
{
    int clear = 0;
    int unreal = 0;
    int pairs = 0;
    int up = 0;
    int down = 0;
    int still = 0;
    const Frame *before = nullptr;
    for (const Frame &frame : frames) {
        if (!isClear(frame))
            continue;
        ++clear;
        if (!labelOf(frame.bits))
            ++unreal;
        if (before && std::abs(frame.start - before->end) < 0.5 * (frame.end - frame.start)) {
            ++pairs;
            up += isOneHigher(*before, frame) ? 1 : 0;
            down += isOneHigher(frame, *before) ? 1 : 0;
            still += labelBits(frame.bits) == labelBits(before->bits) ? 1 : 0;
        }
        before = &frame;
    }
    if (unreal > 1 && 2 * unreal > clear)
        return Doubt::IllegalLabels;
    if (pairs < tellingPairs || 4 * up > 3 * pairs)
        return Doubt::None;
    if (10 * still > 9 * pairs)
        return Doubt::Frozen;
    if (4 * still > pairs)
        return Doubt::Held;
    return 2 * down > pairs ? Doubt::CountingDown : Doubt::Jump;
}

bool carriesFalseFlag(const LabelTrack &track, const std::vector<Frame> &frames)
{
    return track.rate.dropFrame && std::any_of(frames.begin(), frames.end(), [&track](const Frame &frame) {
               const auto label = labelOf(frame.bits);
               return isClear(frame) && label && !isLabel(*label, track.rate);
           });
}

bool endsAtJump(const LabelTrack &track, const std::vector<Frame> &frames)
{
    const auto next = std::find_if(frames.begin(), frames.end(), [&track](const Frame &frame) {
        return isClear(frame) && frame.start > track.last - 0.5 * track.frameLength;
    });
    const auto distance = next == frames.end() ? std::nullopt : distanceFromLine(track, *next);
    return distance && std::abs(*distance) > track.rate.base;
}

bool isContradicted(const LabelTrack &track, const std::vector<Frame> &frames)
{
    const double half = 0.5 * track.frameLength;
    int before = 0;
    int within = 0;
    for (const Frame &frame : frames) {
        if (isClear(frame) && frame.start < track.last - half && distanceFromLine(track, frame) != 0)
            ++(frame.start < track.first - half ? before : within);
    }
    const bool isShort = track.frames < static_cast<int>(longTrack);
    return before > toleratedBefore || within > (isShort ? 0 : toleratedWithin);
}

} // namespace ltcreader

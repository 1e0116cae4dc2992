// SPDX-License-Identifier: MIT
#include "tooladapter/rules/starttimecode.h"

#include "tooladapter/rules/refusal.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace tooladapter
{
namespace
{

constexpr std::string_view pattern = "dd:dd:ddsdd"; // d: a digit; s: the mark of (non-)drop-frame

bool fits(char letter, char place)
{
    if (place == 'd')
        return std::isdigit(static_cast<unsigned char>(letter)) != 0;
    return place == 's' ? letter == ':' || letter == ';' : letter == place;
}

} // namespace

StartTimecode StartTimecode::fromText(const std::string &text)
{
    if (text.empty())
        throw Refusal("the start timecode is empty");
    if (!std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(), fits))
        throw Refusal("\"" + text + "\" is no timecode of the form HH:MM:SS:FF or HH:MM:SS;FF");
    const auto number = [&text](std::size_t position) {
        return (text[position] - '0') * 10 + (text[position + 1] - '0');
    };
    const StartTimecode timecode{{number(0), number(3), number(6), number(9)}, text[8] == ';'};
    if (timecode.label.hours > 23 || timecode.label.minutes > 59 || timecode.label.seconds > 59)
        throw Refusal("\"" + text + "\" is no time of day");
    return timecode;
}

std::string StartTimecode::toText() const
{
    return timecode::toText(label, dropFrame);
}

int impliedNominalRate(const StartTimecode &timecode, const FrameRate &picture)
{
    const int counted = picture.nominal() > 30 ? picture.nominal() / 2 : picture.nominal();
    if (timecode.dropFrame || timecode.label.frames >= 24)
        return 30;
    if (counted != 24 && counted != 30)
        throw Refusal("the frame rate that the timecode " + timecode.toText() +
                      " was counted at is not known");
    return counted;
}

std::string timecodeAtRate(const StartTimecode &timecode, int nominalRate, const FrameRate &picture)
{
    const std::string text = timecode.toText();
    const int pictureRate = picture.nominal();
    if (pictureRate < 1)
        throw Refusal("a picture that changes less than once in two seconds has no frames to count for " +
                      text);
    if (timecode.label.frames >= nominalRate)
        throw Refusal("the timecode " + text + " has no such frame at " + std::to_string(nominalRate) +
                      " frames a second");
    if (timecode.dropFrame) {
        const bool dropsFrames = picture.isNtsc() && (pictureRate == 30 || pictureRate == 60);
        if (nominalRate != 30 || !dropsFrames)
            throw Refusal("the drop-frame timecode " + text +
                          " needs a picture of 29.97 or 59.94 frames a second");
        if (!isLabel(timecode.label, {30, true, true}))
            throw Refusal("the timecode " + text + " does not exist in drop-frame counting");
    }
    StartTimecode counted = timecode;
    // The nearest frame of the picture; never the next second, which is another timecode.
    counted.label.frames = std::min(
        (timecode.label.frames * pictureRate * 2 + nominalRate) / (nominalRate * 2), pictureRate - 1);
    return counted.toText();
}

} // namespace tooladapter

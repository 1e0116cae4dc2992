// SPDX-License-Identifier: MIT
#include "ltcreader/report.h"

#include <array>
#include <charconv>

namespace ltcreader
{
namespace
{

std::string fixed(double number, int decimals)
{
    std::array<char, 400> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, decimals).ptr;
    return {text.data(), end};
}

std::string hexadecimal(std::uint32_t number)
{
    constexpr int digits = 8;
    std::string text;
    for (int digit = digits - 1; digit >= 0; --digit) {
        text += "0123456789abcdef"[number >> (4 * digit) & 0xFU];
    }
    return text;
}

const char *truth(bool value)
{
    return value ? "true" : "false";
}

} // namespace

std::string nameOf(Algorithm algorithm)
{
    switch (algorithm) {
    case Algorithm::Low:
        return "LOW";
    case Algorithm::Mid:
        return "MID";
    case Algorithm::High:
        return "HIGH";
    case Algorithm::Slope:
        return "SLOPE";
    case Algorithm::Automatic:
        break;
    }
    return "JOINT";
}

std::string toJson(const Reading &reading)
{
    std::string json = "{";
    const auto add = [&json](const char *key, const std::string &value) {
        if (json.size() > 1)
            json += ", ";
        json += std::string("\"") + key + "\": " + value;
    };
    const auto quoted = [](const std::string &text) { return '"' + text + '"'; };
    add("Timecode", quoted(toText(reading.start, reading.dropFrame)));
    add("DropFrame", truth(reading.dropFrame));
    add("NTSC", truth(reading.ntsc));
    add("FrameRateFound", std::to_string(reading.baseRate));
    add("FrameRateBaseFound", std::to_string(reading.baseRate));
    add("ChannelFound", std::to_string(reading.channel));
    add("SamplesSinceMidnight", std::to_string(reading.samplesSinceMidnight));
    add("Confidence", fixed(reading.confidence, 6));
    add("MeasuredFrameRate", fixed(reading.measuredRate, 5));
    add("FrameRateErrorPpm", fixed(reading.rateError, 1));
    add("LevelDbfs", fixed(reading.level, 1));
    add("FramePhase", fixed(reading.phase, 4));
    add("FramesUsed", std::to_string(reading.framesUsed));
    add("UserBits", quoted(hexadecimal(reading.userBits)));
    add("Algorithm", quoted(nameOf(reading.algorithm)));
    add("Inverted", truth(reading.inverted));
    return json + "}\n";
}

std::string toText(const Reading &reading)
{
    const timecode::Rate rate{reading.baseRate, reading.ntsc, reading.dropFrame};
    std::string text;
    const auto add = [&text](std::string name, const std::string &value) {
        constexpr std::size_t column = 26;
        name.resize(column, ' ');
        text += name + value + "\n";
    };
    add("Timecode:", toText(reading.start, reading.dropFrame));
    add("Frame rate:", fixed(rate.framesPerSecond(), 3) + (reading.dropFrame ? " drop-frame" : ""));
    add("Channel:", std::to_string(reading.channel + 1));
    add("Samples since midnight:", std::to_string(reading.samplesSinceMidnight));
    add("Confidence:", fixed(reading.confidence, 6));
    add("Measured frame rate:",
        fixed(reading.measuredRate, 5) + " (" + fixed(reading.rateError, 1) + " ppm)");
    add("Level:", fixed(reading.level, 1) + " dBFS");
    add("First sample:", fixed(reading.phase, 4) + " of a frame inside");
    add("Frames used:", std::to_string(reading.framesUsed));
    add("User bits:", hexadecimal(reading.userBits));
    add("Algorithm:", nameOf(reading.algorithm));
    add("Polarity:", reading.inverted ? "inverted" : "normal");
    return text;
}

} // namespace ltcreader

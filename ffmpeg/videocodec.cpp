// SPDX-License-Identifier: MIT
#include "ffmpeg/videocodec.h"

#include <QRegularExpression>

#include <array>

namespace videocodec
{

namespace
{

enum Family { Small, Medium, Large }; // 36/45, 115/120/145, 175x/185x/220

/// What one DNxHD family writes.
struct Coding {
    int megabits; ///< [Mbit/s]
    const char *pixelFormat;
};

/// The DNxHD families at one frame rate.
struct DnxhdRate {
    int frameRateClass;             ///< whole frames per second
    const char *frameRate;          ///< null: the stream's own
    std::array<Coding, 3> families; ///< in the order of Family
};

constexpr auto film = "24000/1001";
constexpr auto ntsc = "30000/1001";
constexpr auto bits8 = "yuv422p";
constexpr auto bits10 = "yuv422p10";

// The large family is 8 bit at 29 and 30 on purpose.
constexpr std::array dnxhdRates{
    DnxhdRate{23, film, {{{36, bits8}, {115, bits8}, {175, bits10}}}},
    DnxhdRate{24, nullptr, {{{36, bits8}, {115, bits8}, {175, bits10}}}},
    DnxhdRate{25, nullptr, {{{36, bits8}, {120, bits8}, {185, bits10}}}},
    DnxhdRate{29, ntsc, {{{45, bits8}, {145, bits8}, {220, bits8}}}},
    DnxhdRate{30, nullptr, {{{45, bits8}, {145, bits8}, {220, bits8}}}},
};

constexpr float bitsPerMegabit = 1'000'000.0F;

/// What a video type stands for.
struct VideoType {
    enum class Kind { PassThrough, Mpeg2, Dnxhd } kind;
    Family family;     ///< of the DNxHD types
    int usualMegabits; ///< [Mbit/s] estimate at frame rates that the family does not have; 0 = none
};

// In the order of the codes.
constexpr std::array videoTypes{
    VideoType{VideoType::Kind::PassThrough, Small, 0}, // as the input
    VideoType{VideoType::Kind::Mpeg2, Small, 0},       // MXF from here
    VideoType{VideoType::Kind::Dnxhd, Small, 0},       // alone without an estimate of its own
    VideoType{VideoType::Kind::Dnxhd, Medium, 120},    VideoType{VideoType::Kind::Dnxhd, Large, 185},
    VideoType{VideoType::Kind::PassThrough, Small, 0}, // QuickTime from here
    VideoType{VideoType::Kind::Dnxhd, Small, 36},      VideoType{VideoType::Kind::Dnxhd, Medium, 120},
    VideoType{VideoType::Kind::Dnxhd, Large, 185},
};

const VideoType *find(int videoType)
{
    const auto index = static_cast<std::size_t>(videoType);
    return videoType >= 0 && index < videoTypes.size() ? &videoTypes.at(index) : nullptr;
}

QStringList codedArguments(const QString &codec, int megabits, const QString &pixelFormat)
{
    return {"-vcodec",  codec,       "-b:v", QString::number(megabits) + 'M',
            "-pix_fmt", pixelFormat, "-s",   "1920x1080"};
}

VideoCodec dnxhd(const VideoType &type, const QJsonObject &videoStream)
{
    const int rateClass = frameRateClass(videoStream);
    for (const DnxhdRate &rate : dnxhdRates) {
        if (rate.frameRateClass != rateClass)
            continue;
        const Coding &coding = rate.families.at(type.family);
        const QString frameRate =
            rate.frameRate ? QString(rate.frameRate) : videoStream["r_frame_rate"].toString();
        return {codedArguments("dnxhd", coding.megabits, coding.pixelFormat) + QStringList{"-r", frameRate},
                static_cast<float>(coding.megabits) * bitsPerMegabit};
    }
    return {{}, static_cast<float>(type.usualMegabits) * bitsPerMegabit};
}

} // namespace

int frameRateClass(const QJsonObject &videoStream)
{
    // Strictly a fraction: where the class has a codec of its own, the text goes to the tool as it is.
    static const QRegularExpression fraction("\\A([0-9]+)/([0-9]+)\\z");
    const auto match = fraction.match(videoStream["r_frame_rate"].toString());
    const int denominator = match.captured(2).toInt();
    return denominator > 0 ? match.captured(1).toInt() / denominator : 0;
}

VideoCodec forType(int videoType, const QJsonObject &videoStream)
{
    constexpr int mpeg2Megabits = 50;
    const VideoType *const type = find(videoType);
    if (!type)
        return {};

    switch (type->kind) {
    case VideoType::Kind::PassThrough:
        return {{"-vcodec", "copy"}, 0.0F, true};
    case VideoType::Kind::Mpeg2:
        return {codedArguments("mpeg2video", mpeg2Megabits, "yuv422p"), mpeg2Megabits * bitsPerMegabit};
    case VideoType::Kind::Dnxhd:
        return dnxhd(*type, videoStream);
    }
    return {};
}

QString nameOf(int videoType)
{
    constexpr std::array familyNames{"dnxhd-36", "dnxhd-115", "dnxhd-175"};
    const VideoType *const type = find(videoType);
    if (!type)
        return {};
    if (type->kind == VideoType::Kind::Dnxhd)
        return familyNames.at(type->family);
    return type->kind == VideoType::Kind::Mpeg2 ? "mpeg2" : "pass";
}

bool leavesFrameRateOpen(int videoType)
{
    const VideoType *const type = find(videoType);
    return type && type->kind != VideoType::Kind::Dnxhd;
}

} // namespace videocodec

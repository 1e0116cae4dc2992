// SPDX-License-Identifier: MIT
#include "ffmpeg/videocodec.h"

#include <QRegularExpression>

#include <array>

namespace videocodec
{

namespace
{

enum Family { Small, Medium, Large }; // 36/45, 115/120/145, 175x/185x/220

/// One DNxHD family at one frame rate.
struct DnxhdRow {
    Family family;
    int frameRateClass; ///< whole frames per second
    int megabits;       ///< [Mbit/s]
    const char *pixelFormat;
    const char *frameRate; ///< null: the stream's own
};

constexpr auto film = "24000/1001";
constexpr auto ntsc = "30000/1001";

// The large family is 8 bit at 29 and 30 on purpose.
constexpr std::array dnxhdRows{
    DnxhdRow{Small, 23, 36, "yuv422p", film},       DnxhdRow{Small, 24, 36, "yuv422p", nullptr},
    DnxhdRow{Small, 25, 36, "yuv422p", nullptr},    DnxhdRow{Small, 29, 45, "yuv422p", ntsc},
    DnxhdRow{Small, 30, 45, "yuv422p", nullptr},    DnxhdRow{Medium, 23, 115, "yuv422p", film},
    DnxhdRow{Medium, 24, 115, "yuv422p", nullptr},  DnxhdRow{Medium, 25, 120, "yuv422p", nullptr},
    DnxhdRow{Medium, 29, 145, "yuv422p", ntsc},     DnxhdRow{Medium, 30, 145, "yuv422p", nullptr},
    DnxhdRow{Large, 23, 175, "yuv422p10", film},    DnxhdRow{Large, 24, 175, "yuv422p10", nullptr},
    DnxhdRow{Large, 25, 185, "yuv422p10", nullptr}, DnxhdRow{Large, 29, 220, "yuv422p", ntsc},
    DnxhdRow{Large, 30, 220, "yuv422p", nullptr},
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
    const int rate = frameRateClass(videoStream);
    for (const DnxhdRow &row : dnxhdRows) {
        if (row.family != type.family || row.frameRateClass != rate)
            continue;
        const QString frameRate =
            row.frameRate ? QString(row.frameRate) : videoStream["r_frame_rate"].toString();
        return {codedArguments("dnxhd", row.megabits, row.pixelFormat) + QStringList{"-r", frameRate},
                static_cast<float>(row.megabits) * bitsPerMegabit};
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

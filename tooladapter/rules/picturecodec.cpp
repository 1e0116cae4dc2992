// SPDX-License-Identifier: MIT
#include "tooladapter/rules/picturecodec.h"

#include "tooladapter/rules/names.h"

#include <algorithm>
#include <array>
#include <string_view>

using namespace std::string_view_literals;

namespace tooladapter
{
namespace
{

/// One family of the export types: as DNxHD, and as DNxHR for rates that DNxHD does not have.
struct Family {
    PictureType type;
    std::array<std::string_view, 3> bitRates; ///< at 23.976 and 24, at 25, at 29.97 and 30
    std::string_view format;                  ///< up to 25 frames a second; above it is "yuv422p"
    std::string_view profile;                 ///< of DNxHR
    std::string_view profileFormat;
};

constexpr std::array families{
    Family{PictureType::SmallDnxhd, {"36M", "36M", "45M"}, "yuv422p", "dnxhr_lb", "yuv422p"},
    Family{PictureType::MediumDnxhd, {"115M", "120M", "145M"}, "yuv422p", "dnxhr_sq", "yuv422p"},
    Family{PictureType::LargeDnxhd, {"175M", "185M", "220M"}, "yuv422p10", "dnxhr_hqx", "yuv422p10"},
};

/// Whole frames a second, cut: 23 at 23.976.
int rateClass(const FrameRate &rate)
{
    return rate.isValid() ? static_cast<int>(rate.numerator / rate.denominator) : 0;
}

/// The place of \a rate in Family::bitRates; none where DNxHD does not have it.
std::optional<std::size_t> columnOf(const FrameRate &rate)
{
    switch (rateClass(rate)) {
    case 23:
    case 24:
        return 0;
    case 25:
        return 1;
    case 29:
    case 30:
        return 2;
    default:
        return std::nullopt;
    }
}

/// The rate as the lists of the application name it: the NTSC rates by their proper fractions.
std::string rateText(const FrameRate &rate)
{
    switch (rateClass(rate)) {
    case 23:
        return "24000/1001";
    case 29:
        return "30000/1001";
    default:
        return rate.toText();
    }
}

Options codecOf(const Family &family, const FrameRate &rate)
{
    if (const auto column = columnOf(rate)) {
        return {{"-vcodec", "dnxhd"},
                {"-b:v", std::string(family.bitRates.at(*column))},
                {"-pix_fmt", std::string(*column < 2 ? family.format : "yuv422p")},
                {"-s", "1920x1080"},
                {"-r", rateText(rate)}};
    }
    return {{"-vcodec", "dnxhd"},
            {"-profile:v", std::string(family.profile)},
            {"-pix_fmt", std::string(family.profileFormat)}};
}

} // namespace

std::string valueOf(const Options &options, const std::string &name)
{
    const auto found = std::find_if(options.begin(), options.end(),
                                    [&name](const Option &option) { return option.name == name; });
    return found == options.end() ? std::string() : found->value;
}

bool isCopied(const ExportPlan &plan)
{
    return valueOf(plan.pictureOptions, "-vcodec") == "copy";
}

void choosePictureCodec(ExportPlan &plan, const Stream &picture, PictureType type)
{
    const auto *const family = std::find_if(families.begin(), families.end(),
                                            [type](const Family &one) { return one.type == type; });
    if (!hasOption(plan.pictureOptions, "-vcodec") && family != families.end())
        plan.pictureOptions = codecOf(*family, picture.frameRate());
    // A coder that takes fields for frames would write each frame twice.
    const bool countsFields = picture.baseRate.isValid() && !(picture.frameRate() == picture.baseRate);
    if (countsFields && !isCopied(plan) && !hasOption(plan.pictureOptions, "-r"))
        plan.pictureOptions.push_back({"-r", picture.frameRate().toText()});
}

bool holdsFields(const Options &options)
{
    constexpr std::array interlacedRates{"120M"sv, "145M"sv, "185M"sv, "220M"sv}; // of DNxHD
    if (valueOf(options, "-vcodec") == "mpeg2video")
        return true;
    return valueOf(options, "-vcodec") == "dnxhd" && isOneOf(interlacedRates, valueOf(options, "-b:v"));
}

} // namespace tooladapter

// SPDX-License-Identifier: MIT
#include "tooladapter/rules/picturefilter.h"

#include "tooladapter/rules/picturecodec.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace tooladapter
{
namespace
{

struct Size {
    int width = 0;  ///< [pixels]
    int height = 0; ///< [pixels]

    bool operator==(const Size &) const = default;
};

/// The size that \a text, "1920x1080", names; an empty one for any other text.
Size sizeFrom(const std::string &text)
{
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos)
        return {};
    return {numberFrom(std::string_view{text}.substr(0, cross)).value_or(0),
            numberFrom(std::string_view{text}.substr(cross + 1)).value_or(0)};
}

int even(double length)
{
    return static_cast<int>(std::lround(length / 2)) * 2;
}

/// A picture as it is seen: turned upright, as the tool does before all filters.
struct View {
    Size size;
    double aspect = 0.0; ///< width divided by height; 0 = not known
};

View viewOf(const Stream &picture)
{
    if (picture.width <= 0 || picture.height <= 0)
        return {};
    const double aspect = picture.width * picture.pixelAspect / picture.height;
    if (picture.rotation % 180 == 0)
        return {{picture.width, picture.height}, aspect};
    return {{picture.height, picture.width}, 1.0 / aspect};
}

/// Whether \a view has another shape than \a frame, if only by a rounded line: the scaler would make up for
/// that with pixels that are not quite square.
bool differsInShape(const View &view, const Size &frame)
{
    constexpr double arithmeticError = 1e-6;
    const double wanted = static_cast<double>(frame.width) / frame.height;
    return view.aspect > 0.0 && std::abs(view.aspect / wanted - 1.0) > arithmeticError;
}

/// The largest size of the picture's shape within \a frame; all of it where the shapes are as good as equal.
Size fitted(const View &view, const Size &frame)
{
    constexpr double tolerance = 0.005; // share of a side: five lines of 1080
    const double wanted = static_cast<double>(frame.width) / frame.height;
    if (view.aspect <= 0.0 || std::abs(view.aspect / wanted - 1.0) < tolerance)
        return frame;
    if (view.aspect > wanted)
        return {frame.width, std::clamp(even(frame.width / view.aspect), 2, frame.height)};
    return {std::clamp(even(frame.height * view.aspect), 2, frame.width), frame.height};
}

/// A chain of filters.
class Chain
{
public:
    void add(const std::string &filter) { text += (text.empty() || filter.empty() ? "" : ",") + filter; }
    std::string text;
};

std::string fieldsToFrames(const Stream &picture)
{
    if (picture.isInterlaced())
        return std::string("bwdif=mode=send_frame:parity=") + (picture.topFieldFirst() ? "tff" : "bff") +
               ":deint=all";
    // If the file does not state it, each picture does.
    return picture.fieldOrder.empty() ? "bwdif=mode=send_frame:parity=auto:deint=interlaced" : "";
}

bool isRgb(const Stream &picture)
{
    constexpr std::string_view beginnings[] = {"rgb",  "bgr",  "gbr",   "argb",  "abgr",
                                               "0rgb", "0bgr", "x2rgb", "x2bgr", "pal8"};
    return std::any_of(std::begin(beginnings), std::end(beginnings), [&picture](std::string_view beginning) {
        return picture.pixelFormat.starts_with(beginning);
    });
}

/// How the colours of a picture are converted, in the words of the filters.
struct Colors {
    std::string conversion; ///< for the scaler; empty = none
    std::string result;     ///< what the frames are then said to be; empty = nothing is said
};

/// The coding of brightness and colour that the scaler has to start from to arrive at that of HD; empty where
/// it is there already, or is one of wide colours.
std::string foreignMatrix(const Stream &picture)
{
    if (isRgb(picture))
        return "auto";
    if (picture.colorSpace == "smpte170m" || picture.colorSpace == "bt470bg")
        return "bt601";
    if (picture.colorSpace == "fcc" || picture.colorSpace == "smpte240m")
        return picture.colorSpace;
    constexpr int linesOfSd = 576;
    const bool isSd = std::min(picture.width, picture.height) <= linesOfSd;
    return picture.colorSpace.empty() && picture.height > 0 && isSd ? "bt601" : "";
}

/// The primary colours of broadcast SD, for files that do not state theirs.
std::string usualPrimaries(const Stream &picture)
{
    if (!picture.colorPrimaries.empty() || !picture.colorSpace.empty())
        return {};
    if (picture.height == 576)
        return ":color_primaries=bt470bg:color_trc=bt709";
    return picture.height == 480 || picture.height == 486 ? ":color_primaries=smpte170m:color_trc=bt709" : "";
}

/// The coded types are those of HD: what they hold is taken for coded as in HD, even if the container says
/// otherwise.
Colors colorsOf(const Stream &picture)
{
    const bool isFullRange = picture.colorRange == "pc" || picture.pixelFormat.starts_with("yuvj");
    Colors colors;
    const auto append = [](std::string &text, const std::string &words) {
        text += (text.empty() ? "" : ":") + words;
    };
    const std::string matrix = foreignMatrix(picture);
    if (!matrix.empty()) {
        append(colors.conversion, "in_color_matrix=" + matrix + ":out_color_matrix=bt709");
        append(colors.result, "colorspace=bt709" + (isRgb(picture) ? "" : usualPrimaries(picture)));
    }
    if (isFullRange || isRgb(picture)) {
        append(colors.conversion, isFullRange ? "in_range=pc:out_range=tv" : "out_range=tv");
        append(colors.result, "range=tv");
    }
    return colors;
}

/// The smallest size that the codec takes and \a size fits into.
Size heldSize(const Size &size)
{
    constexpr Size smallest{256, 120}; // of DNxHR
    return {std::max(size.width + size.width % 2, smallest.width),
            std::max(size.height + size.height % 2, smallest.height)};
}

/// Where a picture is to be within the frames of the written file.
struct Layout {
    View view;     ///< of the source
    bool isFitted; ///< the frame has a given size
    Size image;    ///< of the picture in the frame
    Size frame;
};

Layout layoutOf(const Options &codec, const Stream &picture)
{
    const View view = viewOf(picture);
    const Size given = sizeFrom(valueOf(codec, "-s"));
    if (given.width > 0 && given.height > 0)
        return {view, true, fitted(view, given), given};
    return {view, false, view.size, heldSize(view.size)};
}

/// The filter that gives the picture its size and colours; empty where both are right.
std::string scaler(const Layout &layout, const std::string &conversion, bool isScaled, bool keepsFields)
{
    if (!isScaled && conversion.empty())
        return {};
    std::string filter = "scale=";
    if (layout.isFitted)
        filter += std::to_string(layout.image.width) + ':' + std::to_string(layout.image.height);
    if (keepsFields)
        filter += ":interl=1";
    if (!conversion.empty())
        filter += (layout.isFitted ? ":" : "") + conversion;
    return filter;
}

} // namespace

bool keepsFields(const Options &codec, const Stream &picture)
{
    const Layout layout = layoutOf(codec, picture);
    return picture.isInterlaced() && picture.rotation % 180 == 0 && layout.isFitted &&
           layout.image.height == picture.height && holdsFields(codec);
}

Options pictureTreatment(const Options &codec, const Stream &picture)
{
    const Layout layout = layoutOf(codec, picture);
    const Colors colors = colorsOf(picture);
    const bool staysInterlaced = keepsFields(codec, picture);

    Chain chain;
    if (!staysInterlaced)
        chain.add(fieldsToFrames(picture));
    const bool isScaled = layout.isFitted && (staysInterlaced || differsInShape(layout.view, layout.frame));
    const std::string scale = scaler(layout, colors.conversion, isScaled, staysInterlaced);
    chain.add(scale);
    if (!scale.empty())
        chain.add("format=" + valueOf(codec, "-pix_fmt")); // so that no other scaler converts once more
    if (layout.view.aspect > 0.0 && layout.image != layout.frame)
        chain.add("pad=" + std::to_string(layout.frame.width) + ':' + std::to_string(layout.frame.height) +
                  ":(ow-iw)/2:(oh-ih)/2");
    if (isScaled)
        chain.add("setsar=1");
    if (staysInterlaced)
        chain.add(picture.topFieldFirst() ? "setfield=tff" : "setfield=bff");
    if (!colors.result.empty())
        chain.add("setparams=" + colors.result);

    Options options;
    if (!chain.text.empty())
        options.push_back({"-filter:v:0", chain.text});
    if (staysInterlaced)
        options.push_back({"-flags:v:0", "+ildct+ilme"});
    return options;
}

} // namespace tooladapter

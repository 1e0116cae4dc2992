// SPDX-License-Identifier: MIT
#pragma once

#include "tooladapter/rules/framerate.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tooladapter
{

constexpr int highestSampleRate = 1'000'000; ///< [samples/s] a rate beyond is damage

/// Stands for a note that the application has seen and not passed on.
constexpr std::string_view omittedNote = "...";

/// What the probe tool says of one stream of a media file.
struct Stream {
    enum class Kind { Picture, Audio, Other };

    Kind kind = Kind::Other;
    bool isAttachedPicture = false; ///< a cover or poster image, no moving picture
    std::string codec;              ///< as the probe tool names it, for example "pcm_s24le"
    int channels = 0;               ///< audio only
    int sampleRate = 0;             ///< [samples/s] audio only
    std::string layout;             ///< channel layout; empty where the file names none
    FrameRate baseRate;             ///< the lowest rate that all time stamps fit, for pictures
    FrameRate averageRate;          ///< for pictures
    int width = 0;                  ///< [pixels] as coded, pictures only; so are all up to fieldOrder
    int height = 0;                 ///< [pixels]
    double pixelAspect = 1.0;       ///< width of a pixel divided by its height
    int rotation = 0;               ///< [degrees] a multiple of 90, in either sense
    std::string pixelFormat;        ///< as the probe tool names it, for example "yuv422p10le"
    std::string colorRange;         ///< "tv", "pc"; empty if unknown
    std::string colorSpace;         ///< for example "bt709"; empty if unknown
    std::string colorPrimaries;     ///< likewise
    std::string fieldOrder;         ///< "progressive", "tt", "bb", "tb", "bt"; empty = not known
    long bitRate = 0;               ///< [bit/s]; 0 if unknown
    std::string reel;               ///< name of the tape or card; empty where the stream has none
    std::optional<double> start;    ///< [s] time stamp of what comes first; none if unknown
    double duration = 0.0;          ///< [s]; 0 if unknown
    std::string timecode;           ///< start timecode; empty where the stream has none
    double shownUntil = 0.0;        ///< [s] time stamp at which the packets end that were read; 0 = none was
    double decodedUntil = 0.0;      ///< [s] likewise, by the order of decoding

    bool operator==(const Stream &) const = default;

    bool isInterlaced() const;

    /// Of an interlaced picture: whether the upper line of two is the earlier one.
    bool topFieldFirst() const { return fieldOrder.starts_with('t'); }

    /// The rate of a picture's frames: baseRate, unless that counts the fields of an interlaced picture.
    FrameRate frameRate() const;
};

/// What the probe tool says of one media file.
struct Source {
    std::vector<Stream> streams; ///< by stream index
    double start = 0.0;          ///< [s] time stamp of what comes first in the file
    double duration = 0.0;       ///< [s] of the longest stream; 0 if unknown
    std::string timecode;        ///< start timecode of the file as a whole; empty where it has none
    std::map<std::string, std::string> notes = {}; ///< on the file as a whole; omittedNote = it has one

    bool operator==(const Source &) const = default;

    /// The stream \a index, which must exist.
    const Stream &at(int index) const { return streams[static_cast<std::size_t>(index)]; }

    /// Index of the first moving picture, -1 where there is none.
    int firstPicture() const;

    /// Indexes of all audio streams.
    std::vector<int> audioStreams() const;

    /// How long after the first picture or sound the stream \a index begins [s]; 0 if
    /// unknown.
    double delayOf(int index) const;

    /// When the stream \a index ends, counted from the beginning of the file [s]; the file's whole duration
    /// if the stream does not state it, 0 if neither does. \a index must exist.
    double endOf(int index) const;

    /// The start timecode of the file or of one of its streams; empty where there is none.
    std::string startTimecode() const;
};

/// The arguments that make the probe tool print, for the file at \a path, what parseProbe() reads.
std::vector<std::string> probeArguments(const std::string &path);

/// Likewise, with the packets from the time stamp \a begin [s] on; all of them where it is not above 0.
std::vector<std::string> probeArgumentsWithPackets(const std::string &path, double begin);

/// Reads the probe tool's sections of "key=value" lines. Missing keys leave the defaults.
Source parseProbe(std::string_view text);

} // namespace tooladapter

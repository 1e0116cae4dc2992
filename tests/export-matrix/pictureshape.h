// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace exportmatrix
{

/// In which order the two fields of a frame were taken.
enum class Fields { Progressive, TopFirst, BottomFirst };

/// What a file says of its colours, in the media tool's words; empty = the file does not say.
struct ColourTags {
    QString range = "tv";
    QString primaries;
    QString transfer;
    QString matrix;

    bool operator==(const ColourTags &) const = default;
};

/// How a camera lays out its picture. Sizes are those of the picture as it is shown, upright.
struct PictureShape {
    int width = 0;      ///< [pixels]; 0 = a moving test picture of 320x180 without further checks
    int height = 0;     ///< [pixels]
    int pixelWidth = 1; ///< pixelWidth:pixelHeight is the shape of one pixel
    int pixelHeight = 1;
    int rotation = 0; ///< [degrees clockwise] by which the stored picture must be turned: 0, 90, 180 or 270
    Fields fields = Fields::Progressive;
    ColourTags colours;
    QString pixelFormat = "yuv420p"; ///< as the media tool names it
    bool hasHdrMetadata = false;     ///< carries the luminance of the mastering display and of the content

    bool exists() const { return width > 0; }
    bool isStandardDefinition() const { return width <= 768 && height <= 576; }
    double pixelAspect() const { return double(pixelWidth) / pixelHeight; }
    double displayAspect() const { return pixelAspect() * width / height; }
    bool isTurnedSideways() const { return rotation % 180 != 0; }
    int storedWidth() const { return isTurnedSideways() ? height : width; }
    int storedHeight() const { return isTurnedSideways() ? width : height; }

    /// The matrix by which the colours were coded; where the file does not say, the one that goes with the
    /// size.
    QString codedMatrix() const
    {
        if (!colours.matrix.isEmpty())
            return colours.matrix;
        return isStandardDefinition() ? "smpte170m" : "bt709";
    }
};

} // namespace exportmatrix

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/export-matrix/frame.h"
#include "tests/export-matrix/pictureshape.h"

#include <QStringList>

#include <array>
#include <optional>

namespace exportmatrix
{

/// Where the test card is in a frame [pixels].
struct CardPlace {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// What a decoded frame shows of the test card.
struct CardReading {
    CardPlace place;
    double discWidth = 0.0;  ///< [pixels]
    double discHeight = 0.0; ///< [pixels]
    std::array<CodedColour, 4> patches;
    std::optional<Fields> fields; ///< none = the fields of the block are mixed
};

/// Reads the test card in \a frame. \a isFullRange says how black and white are coded. Throws
/// std::runtime_error where there is no card.
CardReading readCard(const Frame &frame, bool isFullRange);

} // namespace exportmatrix

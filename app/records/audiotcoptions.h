// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>

/// How the audio timecode is to be read, as chosen in the reading dialog.
struct AudioTCOptions {
    int algorithm = 0;      ///< 0 automatic, 1 LOW, 2 MID, 3 HIGH, 4 SLOPE
    int channel = 0;        ///< audio channel counted from 0; -1 = automatic
    double frameRate = 0.0; ///< [frames per second]; -1.0 = automatic
    bool allFiles = false;  ///< true = every row, false = the selected rows
};

Q_DECLARE_METATYPE(AudioTCOptions)

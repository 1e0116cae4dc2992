// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

// Texts of the choice boxes and their codes. Sorted by text; who wants the order of the codes sorts by value.
// Built before main runs and never changed, so they are read from any thread.

extern const QMap<QString, int> exportTypes; ///< video export type: text to code 0 ... 8
extern const QMap<QString, int> audioTypes;  ///< audio export type: text to code 0 ... 2
extern const QMap<QString, int>
    audioChannels; ///< channel to read: text to channel counted from 0; -1 = automatic
extern const QMap<QString, double> frameRates;  ///< text to [frames per second]; -1.0 = automatic
extern const QMap<QString, int> audioCodecRank; ///< codec name to rank; the lower rank is preferred

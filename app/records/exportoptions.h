// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>

/// What the export dialog chose, completed by the controller.
struct ExportOptions {
    QString exportDir;        ///< destination directory as typed
    int videoType = 0;        ///< code of the table exportTypes, 0 ... 8
    int audioType = 0;        ///< code of the table audioTypes, 0 ... 2
    bool muteAudioTC = false; ///< leave the timecode channel out of the output
    bool exportAll = false;   ///< true = all rows, false = the selected rows
    uint progressSteps = 0;   ///< progress units that one file is worth; 0 until the controller sets it
};

Q_DECLARE_METATYPE(ExportOptions)

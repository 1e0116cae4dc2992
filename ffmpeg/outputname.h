// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

/// Where an export goes: the kind of file and its name.
namespace outputname
{

/// Kind of file that an export writes.
enum class Container { AsInput, Mxf, QuickTime, BroadcastWave };

/// True when the name \a mediaPath ends in \a suffix, in capitals or not.
bool hasSuffix(const QString &mediaPath, const QString &suffix);

/// The container that \a videoType (code of exportTypes) means for the file \a inputPath. Sound files always
/// become broadcast wave files.
Container containerFor(const QString &inputPath, int videoType);

/// Path of the output in \a folder: the input's name, without its last suffix, with the container's suffix.
/// While \a isTaken says so, "_1", "_2" ... "_9999" is appended to the name; the last one is used in any
/// case.
QString choose(const QString &inputPath, const QString &folder, Container container,
               const std::function<bool(const QString &)> &isTaken);

} // namespace outputname

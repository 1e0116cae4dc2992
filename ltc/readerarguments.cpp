// SPDX-License-Identifier: MIT
#include "ltc/readerarguments.h"

namespace readerarguments
{

namespace
{

QStringList algorithmSwitch(int algorithm, bool isGoPro)
{
    switch (algorithm) {
    case 0:
        return isGoPro ? QStringList{"-aSLOPE"} : QStringList{};
    case 1:
        return {"-aLOW"};
    case 2:
        return {"-aMID"};
    case 3:
        return {"-aHIGH"};
    case 4:
        return {"-aSLOPE"};
    default:
        return {};
    }
}

} // namespace

QStringList automatic(const QString &filePath, bool isGoPro)
{
    return QStringList{filePath} + algorithmSwitch(0, isGoPro);
}

QStringList chosen(const QString &filePath, const AudioTCOptions &options, bool isGoPro)
{
    QStringList arguments{filePath};
    if (options.channel >= 0)
        arguments += "-c" + QString::number(options.channel);
    if (options.frameRate >= 0.0) // false for a rate that is not a number
        arguments += "-f" + QString::number(options.frameRate, 'g', 6);
    return arguments + algorithmSwitch(options.algorithm, isGoPro);
}

} // namespace readerarguments

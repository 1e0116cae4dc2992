// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QString>
#include <QVector>

/// Logs for editing programs in the form ALE: a heading, the names of the columns and a line a file, with
/// tabs between.
namespace alereport
{

/// One log. All files in it run at one rate, as the form has one for all.
struct Log {
    QString rate; ///< [frames per second] as the heading has it: "25", "23.976"
    QByteArray content;
};

/// The logs of those of \a records that carry a timecode: one for each rate, the rate of most files first.
/// Without any there is one log without files, at 25.
QVector<Log> make(const QJsonArray &records);

} // namespace alereport

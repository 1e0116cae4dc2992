// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace exportmatrix
{

/// How one run of a program ended.
struct ToolRun {
    bool ended = false; ///< by itself and within the limit
    int exitCode = -1;
    QByteArray output; ///< standard output
    QByteArray errors; ///< standard error
};

/// Runs \a program with \a arguments to its end; at most two minutes.
ToolRun runTool(const QString &program, const QStringList &arguments,
                const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

} // namespace exportmatrix

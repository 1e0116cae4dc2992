// SPDX-License-Identifier: MIT
#include "tests/export-matrix/toolrun.h"

#include <QProcess>

namespace exportmatrix
{

ToolRun runTool(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment)
{
    constexpr int limit = 120 * 1000; // [ms]
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.closeWriteChannel();
    ToolRun run;
    run.ended = process.waitForFinished(limit) && process.exitStatus() == QProcess::NormalExit;
    run.exitCode = run.ended ? process.exitCode() : -1;
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}

} // namespace exportmatrix

// SPDX-License-Identifier: MIT
#include "app/records/recordtypes.h"
#include "batch/batchoptions.h"
#include "batch/batchprogram.h"
#include "process/filenamecoding.h"
#include "process/terminationsignals.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>

namespace
{

PathKind kindOf(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return PathKind::Nothing;
    return info.isDir() ? PathKind::Folder : PathKind::File;
}

int run(const BatchOptions &options)
{
    BatchProgram program(options);
    if (options.isJoin)
        return static_cast<int>(program.join());
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested, &program,
                     &BatchProgram::interrupt);
    // Queued: a run may end before the event loop begins.
    QObject::connect(&program, &BatchProgram::finished, qApp, &QCoreApplication::exit, Qt::QueuedConnection);
    const ExitCode begun = program.start();
    return begun == ExitCode::Done ? QCoreApplication::exec() : static_cast<int>(begun);
}

} // namespace

int main(int argc, char *argv[])
{
    registerRecordTypes();
    useUtf8FileNames();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("ostrel-batch");

    const BatchCommand command = parseBatchCommand(QCoreApplication::arguments(), kindOf);
    if (const auto *options = std::get_if<BatchOptions>(&command))
        return run(*options);
    if (const auto *answer = std::get_if<BatchAnswer>(&command)) {
        QTextStream(stdout) << answer->text;
        return static_cast<int>(ExitCode::Done);
    }
    QTextStream(stderr) << "ostrel-batch: " << std::get<BatchRefusal>(command).reason << '\n';
    return static_cast<int>(ExitCode::WrongUsage);
}

// SPDX-License-Identifier: MIT
#include "batch/filecheck.h"

#include "process/toolprocess.h"
#include "process/toolresolver.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace
{

/// The media tools themselves: what rewrites their arguments is not asked to judge its own work.
QString mediaTool(const QString &name)
{
#ifdef Q_OS_UNIX
    return toolresolver::resolve(name);
#else
    return toolresolver::resolve(name + ".exe");
#endif
}

} // namespace

FileCheck::FileCheck(const FileData &file, const ExportOptions &options, const QString &path, QObject *parent)
    : QObject(parent), file(file), path(path), expected(verification::expectationOf(file, options))
{
}

void FileCheck::start()
{
    next();
}

void FileCheck::next()
{
    switch (step) {
    case Step::Probe:
        run(mediaTool("ffprobe"),
            {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path});
        break;
    case Step::Mediainfo: {
        const QString tool = toolresolver::resolve("mediainfo");
        run(QFileInfo(tool).isAbsolute() ? tool : QString(), {"--Output=JSON", path});
        break;
    }
    case Step::Source:
        run(mediaTool("ffmpeg"), verification::sourceArguments(file, expected, probe));
        break;
    case Step::Written:
        run(mediaTool("ffmpeg"), verification::writtenArguments(path, file, expected, probe));
        break;
    case Step::End:
        end();
    }
}

/// Runs \a tool for the step; without a tool or arguments there is nothing to do in it.
void FileCheck::run(const QString &tool, const QStringList &arguments)
{
    output.clear();
    frames = verification::FrameDigest();
    if (tool.isEmpty() || arguments.isEmpty()) {
        takeEnd();
        return;
    }
    process = new ToolProcess(this);
    connect(process, &QProcess::readyReadStandardOutput, this, &FileCheck::takeOutput);
    connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &FileCheck::takeEnd);
    // Queued, since starting can fail inside the call. What a tool did not say is missing in the judgement.
    connect(
        process, &QProcess::errorOccurred, this,
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                takeEnd();
        },
        Qt::QueuedConnection);
    process->start(tool, arguments, QIODevice::ReadOnly);
}

void FileCheck::takeOutput()
{
    const QByteArray piece = process->readAllStandardOutput();
    if (step == Step::Source || step == Step::Written)
        frames.add(piece);
    else
        output += piece;
}

void FileCheck::takeEnd()
{
    const QByteArray errors = process ? process->readAllStandardError() : QByteArray();
    if (process) {
        takeOutput();
        process->deleteLater();
        process = nullptr;
    }
    const verification::Contents contents{frames.frames(), frames.hash(), errors};
    switch (step) {
    case Step::Probe:
        probe = QJsonDocument::fromJson(output).object();
        step = Step::Mediainfo;
        break;
    case Step::Mediainfo:
        mediainfo = output;
        step = Step::Source;
        break;
    case Step::Source:
        source = contents;
        step = Step::Written;
        break;
    case Step::Written:
        written = contents;
        step = Step::End;
        break;
    case Step::End:
        return;
    }
    next();
}

void FileCheck::end()
{
    const QStringList faults = verification::faults(file, expected, probe, mediainfo, source, written);
    const QString text =
        faults.isEmpty() ? verification::praise(file, expected, probe, written) : faults.join("; ");
    emit done(this, file.rowNumber, {faults.isEmpty(), text, verification::startIn(probe)});
}

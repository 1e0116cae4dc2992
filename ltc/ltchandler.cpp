// SPDX-License-Identifier: MIT
#include "ltc/ltchandler.h"

#include "ltc/readerarguments.h"
#include "process/toolprocess.h"
#include "process/toolresolver.h"

#include <QJsonDocument>

LTCHandler::LTCHandler(QObject *parent) : QObject(parent)
{
}

void LTCHandler::readTimecode(const QString &audioPath, bool fromGoPro)
{
    filePath = audioPath;
    isGoPro = fromGoPro;
    start();
}

void LTCHandler::readTimecode(const QString &audioPath, const AudioTCOptions &readOptions, bool fromGoPro)
{
    options = readOptions;
    hasOptions = true;
    readTimecode(audioPath, fromGoPro);
}

void LTCHandler::start()
{
    process = new ToolProcess(this);
    process->setStandardErrorFile(QProcess::nullDevice()); // what no one reads would pile up
    connect(process, &QProcess::readyReadStandardOutput, this, &LTCHandler::ltcReaderReady);
    connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &LTCHandler::ltcReaderFinished);
    connect(process, &QProcess::errorOccurred, this, &LTCHandler::reportFailedStart,
            Qt::QueuedConnection); // starting can fail inside this call
    process->start(toolresolver::resolve(program),
                   hasOptions ? readerarguments::chosen(filePath, options, isGoPro)
                              : readerarguments::automatic(filePath, isGoPro),
                   QIODevice::ReadWrite);
}

void LTCHandler::ltcReaderReady()
{
    outputBuffer += process->readAllStandardOutput();
}

void LTCHandler::ltcReaderFinished(int exitCode)
{
    const QJsonObject result = QJsonDocument::fromJson(outputBuffer).object();
    outputBuffer.clear();
    emit ltcReaderResult(this, result, filePath, exitCode);
}

void LTCHandler::reportFailedStart(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        emit couldNotStart(this);
}

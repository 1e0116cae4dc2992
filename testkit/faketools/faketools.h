// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// The tests' side of the fake tools: gives them their parts and reports how they were called. What a plan
/// can say is written in README.md next to this file.
namespace faketools
{

/// One start of a fake tool.
struct Call {
    QString tool;            ///< name it was started under, e.g. "ffmpeg.exe"
    QString job;             ///< "probe", "extract", "export" or "read"
    int stream = -1;         ///< of a read: the stream that its WAV file was extracted from; -1 = none
    QStringList arguments;   ///< exactly as the tool got them
    QString timecodeChannel; ///< OSTREL_TIMECODE_CHANNEL of its environment; null when it is not set
    QString timecodeRate;    ///< OSTREL_TIMECODE_RATE of its environment; null when it is not set
    QString source;          ///< OSTREL_SOURCE of its environment; null when it is not set
    qint64 processId = 0;    ///< of the tool
    int priority = 0;        ///< nice value that it ran at
    int oomScore = 0;        ///< how soon it goes when memory runs out, -1000 ... 1000
};

/// Gives the tools their parts for the jobs on \a mediaPath.
void setPlan(const QString &mediaPath, const QJsonObject &plan);

/// Gives the tools their parts for every file in \a folder that has no plan of its own.
void setDefaultPlan(const QString &folder, const QJsonObject &plan);

/// All starts so far for \a mediaPath, in order; with \a job, only those of that job.
QVector<Call> calls(const QString &mediaPath, const QString &job = {});

/// Creates the file \a path, which tools wait for.
void openGate(const QString &path);

/// True while the process \a processId does anything; false when it has ended, collected or not. Linux only.
bool isAlive(qint64 processId);

} // namespace faketools

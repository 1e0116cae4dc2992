// SPDX-License-Identifier: MIT
#pragma once

#include "batch/verification.h"

#include <QObject>

class QProcess;

/// What a check has found.
struct Verdict {
    bool isProven = false;
    QString text;  ///< in words
    QString start; ///< read back from the new file
};

/// Checks one new file against its source, with the tools one after the other: its description by the probe
/// tool and mediainfo, if that is installed, then one read of the source and one of the new file.
///
/// Reports once. Deleted before, it kills its tool and reports nothing.
class FileCheck : public QObject
{
    Q_OBJECT

public:
    /// \a row comes back with the result; \a path is the file that an export of \a file with \a options
    /// wrote.
    FileCheck(const FileData &file, const ExportOptions &options, const QString &path, QObject *parent);

    void start();

signals:
    void done(FileCheck *check, int row, Verdict verdict);

private:
    enum class Step { Probe, Mediainfo, Source, Written, End };

    void next();
    void run(const QString &tool, const QStringList &arguments);
    void takeOutput();
    void takeEnd();
    void end();

    FileData file; ///< with the row
    QString path;
    verification::Expectation expected;
    Step step = Step::Probe;
    QProcess *process = nullptr; ///< of the step
    QByteArray output;           ///< of the step
    verification::FrameDigest frames;
    QJsonObject probe;
    QByteArray mediainfo;
    verification::Contents source;
    verification::Contents written;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// A file that a job writes.
struct FakeOutput {
    QString path;
    int stream = -1; ///< of an extraction: the stream that it holds; -1 = an export
};

/// What one start of a fake tool is asked to do, read from its name and arguments.
struct FakeJob {
    QString tool;                ///< name it was started under
    QString name;                ///< "probe", "extract", "export" or "read"
    QStringList arguments;       ///< without the program's name
    QString input;               ///< the file given to the tool
    QString media;               ///< the file whose plan applies: the input, or what it was extracted from
    int stream = -1;             ///< of a read: the stream that the input was extracted from
    QVector<FakeOutput> outputs; ///< files that ffmpeg.exe is asked to write

    static FakeJob fromArguments(const QString &tool, const QStringList &arguments);

    /// Notes this start in the media file's ".calls" and answers how many of the same kind came before.
    int noteCall() const;

    /// The part to play: that of the media file or of its folder; empty when neither has one.
    QJsonObject plan(int earlierCalls) const;
};

/// Adds one line to \a path in a single write, so that lines of many processes never mix.
void appendLine(const QString &path, const QJsonObject &line);

/// What an extraction writes into a WAV file, so that the reader finds back to the media file.
QByteArray extractContent(const FakeJob &job, int stream);

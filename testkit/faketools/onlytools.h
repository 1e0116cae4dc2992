// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QTemporaryDir>

/// Has only these tools in the program search path, for as long as it lives.
class OnlyTools
{
public:
    /// Each tool by its name and the program that plays it, a fake or one of the machine.
    explicit OnlyTools(const QMap<QString, QString> &tools);
    ~OnlyTools();
    Q_DISABLE_COPY(OnlyTools)

private:
    QByteArray searchPath;
    QTemporaryDir folder;
};

/// The media tools of the machine, and a fake reader.
QMap<QString, QString> realMediaTools();

/// Makes a real media file at \a path with the machine's tool, from \a source and coded as its arguments say.
void makeMedia(const QString &path, const QStringList &source);

/// Makes a real media file with ten seconds of a tone.
void makeTone(const QString &path);

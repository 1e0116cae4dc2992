// SPDX-License-Identifier: MIT
#include "tests/export-matrix/argumentlists.h"

#include <QFile>
#include <QFileInfo>

namespace argumentlists
{

QString choiceOf(const ExportOptions &options)
{
    return QString("%1+%2%3")
        .arg(options.videoType)
        .arg(options.audioType)
        .arg(options.muteAudioTC ? "m" : "");
}

QString lineOf(QStringList arguments, const FileData &file, const QString &exportDir)
{
    const QString target = exportDir + '/' + QFileInfo(file.absoluteFilePath).completeBaseName() + '.';
    for (QString &argument : arguments) {
        if (argument == file.absoluteFilePath)
            argument = "SOURCE";
        else if (argument.startsWith(target))
            argument = "TARGET." + argument.mid(target.size());
        else if (argument.isEmpty() || argument.contains(' '))
            argument = '\'' + argument + '\'';
    }
    return arguments.join(' ');
}

QMap<QString, QString> wantedLines(const QString &name)
{
    QFile file(ARGUMENT_LISTS);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", ARGUMENT_LISTS);
    QMap<QString, QString> lines;
    QString list;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine());
        if (!line.startsWith(' ')) {
            list = line.trimmed();
            continue;
        }
        const QStringList choices = line.section(": ", 0, 0).split(' ', Qt::SkipEmptyParts);
        if (line.section(": ", 1).trimmed().split(' ').contains(name)) {
            for (const QString &choice : choices)
                lines[choice] = list;
        }
    }
    return lines;
}

} // namespace argumentlists

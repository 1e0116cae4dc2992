// SPDX-License-Identifier: MIT
#include "batch/exportnotes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

ExportNotes::ExportNotes(const ExportOptions &options)
    : options(options), folder(QDir(options.exportDir).absoluteFilePath(".ostrel-batch"))
{
}

bool ExportNotes::claim(const FileData &file, const QString &path) const
{
    QDir().mkpath(folder);
    QFile note(notePath(path));
    if (!note.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return !note.exists();
    QJsonObject content = describe(file);
    content["export"] = QFileInfo(path).fileName();
    note.write(QJsonDocument(content).toJson());
    return true;
}

void ExportNotes::setVerified(const FileData &file, const QString &path, const QString &start) const
{
    QJsonObject content = describe(file);
    content["export"] = QFileInfo(path).fileName();
    content["exportSize"] = QFileInfo(path).size();
    content["start"] = start;
    QSaveFile note(notePath(path));
    if (note.open(QIODevice::WriteOnly)) {
        note.write(QJsonDocument(content).toJson());
        note.commit();
    }
}

void ExportNotes::drop(const QString &path) const
{
    QFile::remove(notePath(path));
}

std::optional<ExportNotes::Done> ExportNotes::verifiedExport(const FileData &file) const
{
    const QVector<QJsonObject> notes = notesOf(file);
    for (const QJsonObject &note : notes) {
        const QFileInfo written(QDir(options.exportDir).absoluteFilePath(note["export"].toString()));
        if (note.contains("exportSize") && written.isFile() &&
            written.size() == static_cast<qint64>(note["exportSize"].toDouble()))
            return Done{written.absoluteFilePath(), note["start"].toString()};
    }
    return std::nullopt;
}

void ExportNotes::removeHalfDone(const FileData &file) const
{
    const QVector<QJsonObject> notes = notesOf(file);
    for (const QJsonObject &note : notes) {
        if (note.contains("exportSize"))
            continue;
        const QString path = QDir(options.exportDir).absoluteFilePath(note["export"].toString());
        QFile::remove(path);
        drop(path);
    }
}

QString ExportNotes::notePath(const QString &path) const
{
    return folder + '/' + QFileInfo(path).fileName() + ".json";
}

/// What must be the same for an export to be the same.
QJsonObject ExportNotes::describe(const FileData &file) const
{
    const QFileInfo source(file.absoluteFilePath);
    return {
        {"source", file.absoluteFilePath},
        {"sourceSize", source.size()},
        {"sourceModified", source.lastModified().toMSecsSinceEpoch()},
        {"timecode", file.hasAudioTC ? file.audioTC : QString()},
        {"samplesSinceMidnight", file.hasAudioTC ? file.audioTCResult["SamplesSinceMidnight"] : QJsonValue()},
        {"videoType", options.videoType},
        {"audioType", options.audioType},
        {"keepsTimecodeChannel", !options.muteAudioTC}};
}

QJsonObject ExportNotes::read(const QString &notePath)
{
    QFile note(notePath);
    return note.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(note.readAll()).object() : QJsonObject();
}

QVector<QJsonObject> ExportNotes::notesOf(const FileData &file) const
{
    const QJsonObject wanted = describe(file);
    QVector<QJsonObject> notes;
    const QStringList names = QDir(folder).entryList({"*.json"}, QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        const QJsonObject note = read(folder + '/' + name);
        bool isSame = !note["export"].toString().isEmpty() && !note["export"].toString().contains('/');
        for (auto field = wanted.begin(); field != wanted.end(); ++field)
            isSame = isSame && note[field.key()] == field.value();
        if (isSame)
            notes += note;
    }
    return notes;
}

// SPDX-License-Identifier: MIT
#include "testkit/media/exportedfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

ExportedFile parseProbe(const QByteArray &probeOutput)
{
    const QJsonObject probe = QJsonDocument::fromJson(probeOutput).object();
    const QJsonArray streams = probe["streams"].toArray();
    const QJsonObject tags = probe["format"].toObject()["tags"].toObject();

    ExportedFile file;
    file.readable = !streams.isEmpty();
    file.timecode = tags["timecode"].toString();
    if (tags.contains("time_reference"))
        file.timeReference = tags["time_reference"].toString().toLongLong();
    for (const QJsonValue &stream : streams) {
        const QJsonObject description = stream.toObject();
        const QString streamTimecode = description["tags"].toObject()["timecode"].toString();
        if (!streamTimecode.isEmpty())
            file.timecode = streamTimecode;
        if (description["codec_type"] == "audio")
            file.audioChannels += description["channels"].toInt();
    }
    return file;
}

ExportedFile readExportedFile(const QString &path)
{
    QProcess probe;
    probe.start("ffprobe", {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path});
    probe.waitForFinished();
    return parseProbe(probe.readAllStandardOutput());
}

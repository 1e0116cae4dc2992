// SPDX-License-Identifier: MIT
#include "app/windowtexts.h"

#include "app/records/applicationinfo.h"

#include <QCoreApplication>
#include <QJsonObject>

namespace windowtexts
{

namespace
{

QString translated(const char *text)
{
    return QCoreApplication::translate("MainWindow", text);
}

QString number(const QJsonObject &stream, const char *key)
{
    return QString::number(stream.value(QLatin1String(key)).toInt());
}

/// "   0: video (h264)"
QString streamLine(const QJsonObject &stream, const QString &kind)
{
    return "   " + number(stream, "index") + ": " + kind + " (" + stream.value("codec_name").toString() + ')';
}

} // namespace

QStringList streamLines(const FileData &file)
{
    QStringList lines{translated(" Streams:")};
    const QJsonObject &video = file.mainStream;
    if (video.contains("index")) {
        lines += streamLine(video, translated("video"));
        lines += translated("     size: ") + number(video, "width") + 'x' + number(video, "height");
    }
    const bool mxf = file.suffix.compare(QLatin1String("mxf"), Qt::CaseInsensitive) == 0;
    for (const auto &value : file.audioStreams) {
        const QJsonObject audio = value.toObject();
        lines += streamLine(audio, translated("audio"));
        if (audio.contains("channel_layout"))
            lines += translated("     layout: ") + audio.value("channel_layout").toString();
        if (!mxf)
            lines += translated("     channels: ") + number(audio, "channels");
    }
    return lines;
}

QString failedExports(const QStringList &names)
{
    constexpr int namesPerLine = 4;
    QString text = translated("Export finished.\nErrors occured with the folliwing files:");
    for (int i = 0; i < names.size(); ++i) {
        if (i % namesPerLine == 0)
            text += '\n';
        text += names.at(i) + ", ";
    }
    text.chop(2); // the last comma and blank; without names it takes what is there
    return text;
}

QString about()
{
    const QString version = QString::asprintf("%u.%02u", applicationMajorVersion, applicationMinorVersion);
    return "<p style='margin-right:5em;'>" + applicationTitle + " V" + version + "<br>" +
           translated("Webpage: ") + "<a href='" OSTREL_WEB_PAGE "'>" OSTREL_WEB_PAGE "</a><br></p>";
}

QString missingTools(const QStringList &programs)
{
    const QStringList ours = programs.filter(".exe");
    QString text = translated("These tools were not found:") + '\n' + programs.join(", ") + "\n\n";
    if (ours.size() < programs.size())
        text += translated("Install the package \"ffmpeg\" of your system.") + '\n';
    if (!ours.isEmpty())
        text += translated("Install this application again, or put the missing files next to it.") + '\n';
    return text + '\n' + translated("Files cannot be read or exported without them.");
}

} // namespace windowtexts

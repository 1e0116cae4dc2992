// SPDX-License-Identifier: MIT
#include "batch/htmlreport.h"

#include "batch/reportrecord.h"
#include "batch/reports.h"

#include <QJsonObject>
#include <QStringList>

namespace htmlreport
{

namespace
{

constexpr auto style = R"(
:root { color-scheme: light dark; --line: #bbb; --wrong: #b00020; --paper: #fff; --ink: #111; }
@media (prefers-color-scheme: dark) {
  :root { --line: #555; --wrong: #ff8a80; --paper: #161616; --ink: #eee; }
}
body { font: 11pt/1.35 system-ui, sans-serif; margin: 1.5em; color: var(--ink); background: var(--paper); }
h1 { font-size: 1.4em; } h2 { font-size: 1.1em; margin-top: 1.6em; }
table { border-collapse: collapse; width: 100%; font-size: 0.85em; }
th, td { text-align: left; vertical-align: top; padding: 0.25em 0.6em; border-bottom: 1px solid var(--line); }
td { overflow-wrap: anywhere; font-variant-numeric: tabular-nums; }
td.timecode { white-space: nowrap; }
.wrong { color: var(--wrong); font-weight: bold; }
@page { size: A4 landscape; margin: 12mm; }
@media print {
  :root { --line: #999; --wrong: #900; --paper: #fff; --ink: #000; }
  body { margin: 0; font-size: 9pt; }
  thead { display: table-header-group; } tr { break-inside: avoid; }
}
)";

QString escaped(const QJsonValue &value)
{
    return value.toVariant().toString().toHtmlEscaped();
}

QString element(const QString &name, const QString &content, const QString &cssClass = {})
{
    const QString attribute = cssClass.isEmpty() ? QString() : " class=\"" + cssClass + '"';
    return '<' + name + attribute + '>' + content + "</" + name + '>';
}

QString pictureText(const QJsonObject &record)
{
    if (record["pictureCodec"].isNull())
        return {};
    return QString("%1 %2x%3, %4")
        .arg(escaped(record["pictureCodec"]), escaped(record["pictureWidth"]),
             escaped(record["pictureHeight"]), escaped(record["pictureRate"]));
}

QString soundText(const QJsonObject &record)
{
    if (record["soundCodecs"].isNull())
        return {};
    return escaped(record["soundCodecs"]) + ", " + escaped(record["soundChannels"]) + " channels";
}

QString placeText(const QJsonObject &record)
{
    if (!record["linkedFrom"].isNull())
        return "of " + escaped(record["linkedFrom"]);
    if (record["channel"].isNull())
        return {};
    const int second = record["foundAtSecond"].toInt();
    return "channel " + escaped(record["channel"]) + " of stream " + escaped(record["stream"]) +
           (second > 0 ? QString(", found at second %1").arg(second) : QString());
}

QString rateText(const QJsonObject &record)
{
    if (record["frameRate"].isNull())
        return {};
    return escaped(record["frameRate"]) + (record["dropFrame"].toBool() ? " DF" : "");
}

QString fileRow(const QJsonObject &record)
{
    const QString outcome =
        record["exportResult"].isNull() ? escaped(record["result"]) : escaped(record["exportResult"]);
    return element("tr", element("td", escaped(record["name"])) +
                             element("td", escaped(record["audioTimecode"]), "timecode") +
                             element("td", rateText(record)) + element("td", placeText(record)) +
                             element("td", escaped(record["fileTimecode"]), "timecode") +
                             element("td", escaped(record["durationSeconds"])) +
                             element("td", pictureText(record)) + element("td", soundText(record)) +
                             element("td", escaped(record["exportPath"])) +
                             element("td", escaped(record["exportStart"]), "timecode") +
                             element("td", outcome, reportrecord::isWrong(record) ? "wrong" : "")) +
           '\n';
}

QString table(const QStringList &titles, const QString &rows)
{
    QString head;
    for (const QString &title : titles)
        head += element("th", title);
    return element("table",
                   '\n' + element("thead", element("tr", head)) + '\n' + element("tbody", '\n' + rows)) +
           '\n';
}

QString summaryText(const QJsonArray &records)
{
    const QJsonObject counts = reports::summary(records);
    return QString("%1 files: %2 with timecode, %3 linked, %4 without, %5 not read.")
        .arg(counts["files"].toInt())
        .arg(counts["found"].toInt())
        .arg(counts["linked"].toInt())
        .arg(counts["none"].toInt())
        .arg(counts["failed"].toInt());
}

} // namespace

QByteArray make(const QJsonArray &records)
{
    QString wrong;
    QString all;
    for (const QJsonValue &value : records) {
        const QJsonObject record = value.toObject();
        all += fileRow(record);
        if (reportrecord::isWrong(record)) {
            wrong += element("tr", element("td", escaped(record["path"])) +
                                       element("td", escaped(record["reason"]), "wrong")) +
                     '\n';
        }
    }
    QString body = element("h1", "Timecode report") + '\n' + element("p", summaryText(records)) + '\n';
    if (!wrong.isEmpty())
        body += element("h2", "What went wrong") + '\n' + table({"File", "Reason"}, wrong);
    body += element("h2", "All files") + '\n' +
            table({"File", "Audio TC", "Rate", "Place", "File TC", "Duration [s]", "Picture", "Sound",
                   "New file", "New start", "Result"},
                  all);
    const QString head = "<meta charset=\"utf-8\"/>" + element("title", "Timecode report") +
                         element("style", QString::fromLatin1(style));
    return ("<!DOCTYPE html>\n<html lang=\"en\">\n" + element("head", head) + '\n' +
            element("body", '\n' + body) + "\n</html>\n")
        .toUtf8();
}

} // namespace htmlreport

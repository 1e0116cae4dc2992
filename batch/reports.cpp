// SPDX-License-Identifier: MIT
#include "batch/reports.h"

#include "app/records/applicationinfo.h"
#include "batch/alereport.h"
#include "batch/htmlreport.h"
#include "batch/reportrecord.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <utility>

namespace reports
{

namespace
{

QString cellText(const QJsonValue &value)
{
    if (value.isBool())
        return value.toBool() ? "true" : "false";
    if (value.isDouble()) {
        constexpr int digits = 15; // what a double holds of any decimal number
        return QString::number(value.toDouble(), 'g', digits);
    }
    return value.toString();
}

QString csvField(QString text)
{
    const bool needsQuotes =
        text.contains(',') || text.contains('"') || text.contains('\n') || text.contains('\r');
    return needsQuotes ? '"' + text.replace('"', "\"\"") + '"' : text;
}

QByteArray csvLine(const QStringList &cells)
{
    QStringList fields;
    for (const QString &cell : cells)
        fields += csvField(cell);
    return fields.join(',').toUtf8() + "\r\n";
}

} // namespace

QByteArray csv(const QJsonArray &records)
{
    QByteArray text = csvLine(reportrecord::keys());
    for (const QJsonValue &record : records) {
        QStringList cells;
        for (const QString &key : reportrecord::keys())
            cells += cellText(record.toObject()[key]);
        text += csvLine(cells);
    }
    return text;
}

QJsonObject summary(const QJsonArray &records)
{
    QJsonObject counts{{"files", records.size()}, {"found", 0}, {"linked", 0}, {"none", 0}, {"failed", 0}};
    for (const QJsonValue &record : records) {
        const QString result = record.toObject()["result"].toString();
        counts[result] = counts[result].toInt() + 1;
    }
    return counts;
}

std::optional<QJsonArray> recordsIn(const QByteArray &report)
{
    const QJsonObject object = QJsonDocument::fromJson(report).object();
    if (object["program"] != "ostrel-batch" || !object["files"].isArray())
        return std::nullopt;
    return object["files"].toArray();
}

QJsonArray join(const QVector<QJsonArray> &reports)
{
    QMap<QString, QJsonObject> byPath;
    for (const QJsonArray &records : reports) {
        for (const QJsonValue &record : records)
            byPath[record.toObject()["path"].toString()] = record.toObject();
    }
    QJsonArray joined;
    for (const QJsonObject &record : std::as_const(byPath))
        joined += record;
    return joined;
}

QByteArray json(const QJsonArray &records)
{
    const QString version = QString("%1.%2").arg(applicationMajorVersion).arg(applicationMinorVersion);
    return QJsonDocument(QJsonObject{{"program", "ostrel-batch"},
                                     {"version", version},
                                     {"summary", summary(records)},
                                     {"files", records}})
        .toJson();
}

bool isReportName(const QString &path)
{
    static const QStringList suffixes{"csv", "json", "ale", "html"};
    return suffixes.contains(QFileInfo(path).suffix().toLower());
}

QVector<ReportFile> forPath(const QString &path, const QJsonArray &records)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == "csv")
        return {{path, csv(records)}};
    if (suffix == "json")
        return {{path, json(records)}};
    if (suffix == "html")
        return {{path, htmlreport::make(records)}};

    QVector<ReportFile> files;
    const QVector<alereport::Log> logs = alereport::make(records);
    for (const alereport::Log &log : logs) {
        const QString stem = path.left(path.size() - suffix.size() - 1);
        const QString name = files.isEmpty() ? path : stem + '-' + log.rate + path.right(suffix.size() + 1);
        files += ReportFile{name, log.content};
    }
    return files;
}

} // namespace reports

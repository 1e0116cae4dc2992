// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QString>
#include <QVector>

#include <optional>

/// The reports of a run, made of its records (see reportrecord).
namespace reports
{

/// Comma-separated values as RFC 4180 has them, in UTF-8: a line of the keys, then a line a record. What is
/// not known is empty.
QByteArray csv(const QJsonArray &records);

/// One JSON object: "program", "version", "summary" and the "files".
QByteArray json(const QJsonArray &records);

/// The records in \a report, a report in JSON; none where it is not one.
std::optional<QJsonArray> recordsIn(const QByteArray &report);

/// The records of several \a reports together, in the order of their paths. Of a file that several describe,
/// the last one counts.
QJsonArray join(const QVector<QJsonArray> &reports);

/// How many of \a records ended with each result: "files", "found", "linked", "none" and "failed".
QJsonObject summary(const QJsonArray &records);

/// A file that a report consists of.
struct ReportFile {
    QString path;
    QByteArray content;
};

/// Whether a report can have the name \a path: whether its suffix, in any case of letters, is one of a kind.
bool isReportName(const QString &path);

/// The report that \a path names. Kinds that hold one frame rate only become a file for each rate: the most
/// frequent one gets \a path.
QVector<ReportFile> forPath(const QString &path, const QJsonArray &records);

} // namespace reports

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QString>

/// The reports of a run, made of its records (see reportrecord).
namespace reports
{

/// Comma-separated values as RFC 4180 has them, in UTF-8: a line of the keys, then a line a record. What is
/// not known is empty.
QByteArray csv(const QJsonArray &records);

/// One JSON object: "program", "version", "summary" and the "files".
QByteArray json(const QJsonArray &records);

/// How many of \a records ended with each result: "files", "found", "linked", "none" and "failed".
QJsonObject summary(const QJsonArray &records);

/// The report that the suffix of \a path asks for, in any case of letters; none for other suffixes.
QByteArray forPath(const QString &path, const QJsonArray &records);

} // namespace reports

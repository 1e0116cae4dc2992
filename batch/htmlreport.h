// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonArray>

/// The report for people: one page without anything outside it, for screens in light and dark and for A4.
namespace htmlreport
{

/// The page of \a records: a summary, what went wrong, then all files. It is well-formed as XML too.
QByteArray make(const QJsonArray &records);

} // namespace htmlreport

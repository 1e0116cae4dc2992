// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// Lays \a rows out below \a header as text, each column as wide as its longest cell. Rows may be shorter
/// than the header.
QString layOutTable(const QStringList &header, const QVector<QStringList> &rows);

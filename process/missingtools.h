// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// Names of the programs that this one needs and that are in none of \a searchPath and \a applicationFolder.
/// Where a media tool is only our adapter to the system's tool, the system's tool is needed as well.
QStringList missingTools(const QStringList &searchPath, const QString &applicationFolder);

/// The same for this machine.
QStringList missingTools();

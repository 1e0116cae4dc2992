// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace bench
{

/// Starts \a program, waits for its end and returns the time between [ms]. Its output goes nowhere. Throws
/// Failure when it cannot be started or does not end with exit code 0.
double timeOfProcess(const QString &program, const QStringList &arguments);

} // namespace bench

// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonValue>

/// \a value as a whole number, exactly up to 64 bits; also of a text of decimal digits. 0 where it is none,
/// or where 64 bits do not hold it.
qint64 wholeNumber(const QJsonValue &value);

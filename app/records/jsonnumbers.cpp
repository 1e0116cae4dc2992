// SPDX-License-Identifier: MIT
#include "app/records/jsonnumbers.h"

#include <QVariant>

#include <cmath>

qint64 wholeNumber(const QJsonValue &value)
{
    constexpr double beyond = 9.2e18; // nearly 2^63; what lies above must not be converted
    return std::abs(value.toDouble()) < beyond ? value.toVariant().toLongLong() : 0;
}

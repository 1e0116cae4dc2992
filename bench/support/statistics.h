// SPDX-License-Identifier: MIT
#pragma once

#include <QVector>

namespace bench
{

/// The middle one of \a values, or the mean of the two in the middle; 0 of none.
double median(QVector<double> values);

} // namespace bench

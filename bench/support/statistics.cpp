// SPDX-License-Identifier: MIT
#include "bench/support/statistics.h"

#include <algorithm>

namespace bench
{

double median(QVector<double> values)
{
    if (values.isEmpty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const auto middle = values.size() / 2;
    return values.size() % 2 ? values.at(middle) : (values.at(middle - 1) + values.at(middle)) / 2;
}

} // namespace bench

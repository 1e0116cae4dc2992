// SPDX-License-Identifier: MIT
#include "bench/ltc/curves.h"

#include <cmath>

namespace ltcbench
{

std::vector<double> gradesFrom(double first, double last, double step)
{
    std::vector<double> grades;
    const int count = static_cast<int>(std::lround((last - first) / step));
    for (int i = 0; i <= count; ++i)
        grades.push_back(first + i * step);
    return grades;
}

const std::vector<Curve> &allCurves()
{
    static const std::vector<Curve> curves = [] {
        std::vector<Curve> all;
        for (const auto &part : {curvesOfNoise(), curvesOfSignals(), curvesOfCodecs(), curvesOfTransport(),
                                 curvesOfFormats(), curvesOfCombinations()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return curves;
}

} // namespace ltcbench

// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <vector>

namespace ltcreader
{

constexpr double gainStep = 25.0; // [Hz] between the frequencies for which gains are given

/// Gains, one for each multiple of gainStep from 0 on, that bring a recording whose \a powers at these
/// frequencies were measured back to the spectrum of LTC, phases included.
std::vector<std::complex<float>> minimumPhaseGains(const std::vector<double> &powers);

} // namespace ltcreader

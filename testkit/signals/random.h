// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace testsignals
{

/// Random numbers that are the same on every machine and with every standard library.
class Random
{
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    /// A generator of its own for the thing called \a name with number \a index, independent of all others.
    static Random forCase(std::uint64_t seed, std::string_view name, std::uint64_t index);

    std::uint64_t bits();
    double uniform();                        ///< in [0, 1)
    double uniform(double low, double high); ///< in [low, high)
    int integer(int low, int high);          ///< low..high, both included
    bool chance(double probability);
    double gaussian(); ///< mean 0, variance 1

private:
    std::uint64_t state;
    double spare = 0.0; ///< the second of two gaussian numbers
    bool hasSpare = false;
};

} // namespace testsignals

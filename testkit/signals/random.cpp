// SPDX-License-Identifier: MIT
#include "testkit/signals/random.h"

#include <cmath>
#include <numbers>

namespace testsignals
{

Random Random::forCase(std::uint64_t seed, std::string_view name, std::uint64_t index)
{
    std::uint64_t hash = 0xCBF29CE484222325U ^ Random(seed).bits(); // FNV-1a
    for (const char letter : name)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3U;
    Random mixed(hash);
    return Random(mixed.bits() + index * 0xD1B54A32D192ED03U);
}

std::uint64_t Random::bits()
{
    state += 0x9E3779B97F4A7C15U; // SplitMix64
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31);
}

double Random::uniform()
{
    return static_cast<double>(bits() >> 11) * 0x1p-53;
}

double Random::uniform(double low, double high)
{
    return low + (high - low) * uniform();
}

int Random::integer(int low, int high)
{
    return low + static_cast<int>(uniform() * (high - low + 1));
}

bool Random::chance(double probability)
{
    return uniform() < probability;
}

double Random::gaussian()
{
    if (hasSpare) {
        hasSpare = false;
        return spare;
    }
    const double radius = std::sqrt(-2.0 * std::log(1.0 - uniform()));
    const double angle = 2 * std::numbers::pi * uniform();
    spare = radius * std::sin(angle);
    hasSpare = true;
    return radius * std::cos(angle);
}

} // namespace testsignals

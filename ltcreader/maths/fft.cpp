// SPDX-License-Identifier: MIT

// Stockham's form of the transform: each stage reads one buffer and writes the other in an order that needs
// no correction at the end, with four branches to a stage and a last stage of two where the size asks for it.

#include "ltcreader/maths/fft.h"

#include <cmath>
#include <map>
#include <numbers>

namespace ltcreader
{
namespace
{

using Complex = std::complex<float>;

/// Written out: the library's product also minds infinities, at several times the cost.
inline Complex product(Complex a, Complex b)
{
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

inline Complex quarterTurn(Complex a)
{
    return {a.imag(), -a.real()};
}

/// One stage: \a count transforms of \a length values each become four times as many of a quarter of the
/// length. \a turns are those of the first stage, in which the length is \a count times as great.
void stageOfFour(std::size_t length, std::size_t count, const Complex *turns, const Complex *from,
                 Complex *to)
{
    const std::size_t quarter = length / 4;
    for (std::size_t p = 0; p < quarter; ++p) {
        const Complex once = turns[3 * p * count];
        const Complex twice = turns[3 * p * count + 1];
        const Complex thrice = turns[3 * p * count + 2];
        const Complex *a = from + count * p;
        const Complex *b = a + count * quarter;
        const Complex *c = b + count * quarter;
        const Complex *d = c + count * quarter;
        Complex *out = to + 4 * count * p;
        for (std::size_t q = 0; q < count; ++q) {
            const Complex even = a[q] + c[q];
            const Complex evenDifference = a[q] - c[q];
            const Complex odd = b[q] + d[q];
            const Complex oddDifference = quarterTurn(b[q] - d[q]);
            out[q] = even + odd;
            out[q + count] = product(once, evenDifference + oddDifference);
            out[q + 2 * count] = product(twice, even - odd);
            out[q + 3 * count] = product(thrice, evenDifference - oddDifference);
        }
    }
}

void stageOfTwo(std::size_t count, const Complex *from, Complex *to)
{
    for (std::size_t q = 0; q < count; ++q) {
        to[q] = from[q] + from[q + count];
        to[q + count] = from[q] - from[q + count];
    }
}

} // namespace

Fft::Fft(std::size_t size) : size(size), buffer(size)
{
    for (std::size_t p = 0; p < size / 4; ++p) {
        const double angle = -2.0 * std::numbers::pi * static_cast<double>(p) / static_cast<double>(size);
        const std::complex<double> once = std::polar(1.0, angle);
        const std::complex<double> twice = once * once;
        turns.emplace_back(once);
        turns.emplace_back(twice);
        turns.emplace_back(twice * once);
    }
}

Fft &Fft::ofSize(std::size_t size)
{
    thread_local std::map<std::size_t, Fft> made;
    return made.try_emplace(size, size).first->second;
}

void Fft::forward(Spectrum &values)
{
    std::size_t count = 1;
    for (std::size_t length = size; length >= 2; length /= 4, count *= 4) {
        if (length == 2) {
            stageOfTwo(count, values.data(), buffer.data());
        } else {
            stageOfFour(length, count, turns.data(), values.data(), buffer.data());
        }
        values.swap(buffer);
    }
}

void Fft::backward(Spectrum &values)
{
    for (Complex &value : values) {
        value = std::conj(value);
    }
    forward(values);
    for (Complex &value : values) {
        value = std::conj(value);
    }
}

std::size_t powerOfTwoFrom(std::size_t count)
{
    std::size_t size = 1;
    while (size < count) {
        size *= 2;
    }
    return size;
}

} // namespace ltcreader

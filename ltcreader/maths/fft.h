// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

namespace ltcreader
{

using Spectrum = std::vector<std::complex<float>>;

/// Discrete Fourier transform of one length, without scaling.
class Fft
{
public:
    /// \a size: a power of two.
    explicit Fft(std::size_t size);

    /// The transform of \a size, made once for each size and thread.
    static Fft &ofSize(std::size_t size);

    /// Replaces \a values, as many as the size, by their transform.
    void forward(Spectrum &values);

    /// The inverse, without the division by the size.
    void backward(Spectrum &values);

private:
    std::size_t size;
    Spectrum turns;  ///< exp(-2 pi i k j / size), for each k below size / 4 the three of j = 1, 2, 3
    Spectrum buffer; ///< as many as the size
};

/// The smallest power of two that is not below \a count.
std::size_t powerOfTwoFrom(std::size_t count);

} // namespace ltcreader

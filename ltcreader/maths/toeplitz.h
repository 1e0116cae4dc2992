// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace ltcreader
{

/// Solves the normal equations, of a symmetric Toeplitz matrix, of a filter of \a count taps: those whose
/// matrix has \a diagonals[0] on its diagonal, diagonals[1] next to it on both sides and so on, and \a right
/// on the right side. The diagonal must be above 0 and the largest of its row.
template <std::size_t count>
std::array<double, count> solveToeplitz(const std::array<double, count> &diagonals,
                                        const std::array<double, count> &right)
{
    std::array<std::array<double, count + 1>, count> rows{};
    for (std::size_t row = 0; row < count; ++row) {
        for (std::size_t column = 0; column < count; ++column) {
            rows[row][column] = diagonals[row > column ? row - column : column - row];
        }
        rows[row][count] = right[row];
    }
    for (std::size_t pivot = 0; pivot < count; ++pivot) {
        for (std::size_t row = 0; row < count; ++row) {
            if (row == pivot)
                continue;
            const double factor = rows[row][pivot] / rows[pivot][pivot];
            for (std::size_t column = pivot; column <= count; ++column)
                rows[row][column] -= factor * rows[pivot][column];
        }
    }
    std::array<double, count> solution{};
    for (std::size_t row = 0; row < count; ++row)
        solution[row] = rows[row][count] / rows[row][row];
    return solution;
}

} // namespace ltcreader

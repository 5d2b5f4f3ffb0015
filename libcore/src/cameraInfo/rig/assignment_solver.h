// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace lumo {

/// The gain of each row for each column.
struct AssignmentProblem
{
    static constexpr std::int64_t kForbidden = -1;

    std::size_t size = 0; ///< number of rows, and of columns
    /// Row by row; kForbidden, or 0..2^62 / (size + 1)^2.
    std::vector<std::int64_t> gains;

    [[nodiscard]] std::int64_t gain(std::size_t row, std::size_t column) const
    {
        return gains[row * size + column];
    }
};

/// Assigns each row a different column so that the sum of the gains is greatest. Of
/// several such assignments, takes the one with the lowest column for the last row,
/// then for the row before it, and so on. Takes O(size^3) time.
/// \returns the column of each row; nothing if every complete assignment has a
///     forbidden pair
[[nodiscard]] std::optional<std::vector<std::size_t>> bestAssignment(
    const AssignmentProblem& problem);

} // namespace lumo

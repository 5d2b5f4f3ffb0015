// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"

#include <cstdint>
#include <random>
#include <vector>

namespace lumo::random {

/// Draws `count` different numbers from [first, last]. Each set of that size is equally
/// likely (R. W. Floyd's sampling: Bentley and Floyd, Communications of the ACM 30(9),
/// 1987), but not each order of its numbers.
///
/// The same generator state gives the same numbers with every compiler and standard
/// library. Takes one number from the generator for each index, and another if that
/// number falls into the remainder of 2^32 that would favour some indices (D. Lemire, ACM
/// Transactions on Modeling and Computer Simulation 29(1), 2019). The probability of that
/// is below (last - first + 1) / 2^32.
///
/// Time and memory are proportional to `count`.
///
/// \param generator  not owned; used by one thread at a time
/// \returns an empty list, without using the generator, if `count` is 0, first > last,
///          the range has fewer than `count` numbers, or `generator` is null
[[nodiscard]] LUMO_MATHEMATICS_EXPORT std::vector<std::uint32_t> randomUniformIndices(
    std::uint32_t first, std::uint32_t last, std::uint32_t count, std::mt19937* generator);

} // namespace lumo::random

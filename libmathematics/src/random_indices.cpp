// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/random_indices.h"

#include <unordered_set>

namespace lumo::random {

namespace {

/// Uniform in [0, bound]; Lemire's multiplication with rejection.
std::uint32_t drawUpTo(std::uint32_t bound, std::mt19937& generator)
{
    const std::uint64_t size = std::uint64_t{bound} + 1;
    const std::uint64_t values = std::uint64_t{1} << 32;
    const std::uint64_t remainder = values % size;
    std::uint64_t product = 0;
    do {
        product = std::uint64_t{generator()} * size;
    } while (product % values < remainder);
    return static_cast<std::uint32_t>(product >> 32);
}

} // namespace

std::vector<std::uint32_t> randomUniformIndices(
    std::uint32_t first, std::uint32_t last, std::uint32_t count, std::mt19937* generator)
{
    if (generator == nullptr || count == 0 || first > last || count - 1 > last - first) {
        return {};
    }
    std::vector<std::uint32_t> indices;
    indices.reserve(count);
    std::unordered_set<std::uint32_t> drawn;
    drawn.reserve(count);
    const std::uint32_t span = last - first;
    // Step j may draw 0 .. span - count + 1 + j; the newest replaces one drawn before.
    for (std::uint32_t j = 0; j < count; ++j) {
        const std::uint32_t newest = span - (count - 1 - j);
        std::uint32_t index = drawUpTo(newest, *generator);
        if (!drawn.insert(index).second) {
            index = newest;
            drawn.insert(index);
        }
        indices.push_back(first + index);
    }
    return indices;
}

} // namespace lumo::random

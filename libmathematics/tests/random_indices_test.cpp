// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/random_indices.h"
#include "test_seed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <set>

namespace lumo::random {
namespace {

using Indices = std::vector<std::uint32_t>;

constexpr std::uint32_t kLast = std::numeric_limits<std::uint32_t>::max();

TEST(RandomUniformIndices, AreDifferentAndInRangeForAnyCount)
{
    std::mt19937 rng(testSeed());
    for (const auto& [first, last] :
         {std::pair{5u, 5u}, {0u, 2u}, {7u, 106u}, {kLast - 40, kLast}, {0u, kLast}}) {
        const std::uint32_t most = std::min(last - first, 99u) + 1;
        for (std::uint32_t count = 1; count <= most; ++count) {
            const Indices indices = randomUniformIndices(first, last, count, &rng);
            const std::set<std::uint32_t> different(indices.begin(), indices.end());
            ASSERT_EQ(different.size(), count);
            ASSERT_GE(*different.begin(), first);
            ASSERT_LE(*different.rbegin(), last);
        }
    }
}

TEST(RandomUniformIndices, ImpossibleRequestsDrawNothing)
{
    std::mt19937 rng(testSeed());
    const std::mt19937 before = rng;
    EXPECT_TRUE(randomUniformIndices(0, 9, 0, &rng).empty());
    EXPECT_TRUE(randomUniformIndices(5, 14, 11, &rng).empty());
    EXPECT_TRUE(randomUniformIndices(3, 2, 1, &rng).empty());
    EXPECT_TRUE(randomUniformIndices(0, 9, 3, nullptr).empty());
    EXPECT_EQ(rng, before);
}

// The standard fixes what the generator yields; the rest must not depend on the library.
TEST(RandomUniformIndices, AreTheSameEverywhereAndTakeOneDrawEach)
{
    std::mt19937 rng; // seed 5489: 3499211612, 581869302, 3890346734
    std::mt19937 same = rng;
    // 3499211612 * 998 / 2^32 = 813.09, 581869302 * 999 / 2^32 = 135.3, 3890346734 * 1000 / ...
    EXPECT_THAT(randomUniformIndices(100, 1099, 3, &rng), testing::ElementsAre(913, 235, 1005));
    same.discard(3);
    EXPECT_EQ(rng, same);
}

TEST(RandomUniformIndices, EachSetIsEquallyLikely)
{
    std::mt19937 rng(testSeed());
    constexpr int kTrials = 100000;
    std::array<int, 32> counts{};
    for (int trial = 0; trial < kTrials; ++trial) {
        unsigned set = 0;
        for (const std::uint32_t index : randomUniformIndices(0, 4, 3, &rng)) {
            set |= 1u << index;
        }
        ++counts[set];
    }
    // 10 sets of expected 10,000 each: 6.5 standard deviations of 95.
    EXPECT_EQ(std::count_if(counts.begin(), counts.end(), [](int count) { return count > 0; }), 10);
    for (const int count : counts) {
        EXPECT_TRUE(count == 0 || std::abs(count - kTrials / 10) < 620) << count;
    }
}

} // namespace
} // namespace lumo::random

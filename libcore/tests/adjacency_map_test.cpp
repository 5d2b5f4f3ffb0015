// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/adjacency_map.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace lumo {
namespace {

using Blocks = std::vector<std::set<int>>;

void connectPlainly(Blocks& blocks, int a, int b)
{
    if (a == b) {
        return;
    }
    for (std::set<int>& block : blocks) {
        if (block.count(a) != 0) {
            block.insert(b);
            return;
        }
        if (block.count(b) != 0) {
            block.insert(a);
            return;
        }
    }
    blocks.push_back({a, b});
}

bool mergeOnce(Blocks& blocks)
{
    bool changed = false;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        for (std::size_t j = i + 1; j < blocks.size();) {
            const bool shared = std::any_of(blocks[j].begin(), blocks[j].end(), [&](int number) {
                return blocks[i].count(number) != 0;
            });
            if (!shared) {
                ++j;
                continue;
            }
            blocks[i].insert(blocks[j].begin(), blocks[j].end());
            blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(j));
            changed = true;
        }
    }
    return changed;
}

TEST(AdjacencyMap, StoresWhatBlockByBlockSearchAndRepeatedPassesStore)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 300; ++trial) {
        const int numbers = 2 + static_cast<int>(rng() % 60);
        const int multiple = trial % 3 == 0 ? std::numeric_limits<int>::max() / 31 : 1;
        const AdjacencyMap map;
        Blocks plain;
        for (int step = 0; step < 80; ++step) {
            const int a =
                (static_cast<int>(rng() % static_cast<unsigned>(numbers)) - 30) * multiple;
            const int b =
                (static_cast<int>(rng() % static_cast<unsigned>(numbers)) - 30) * multiple;
            map.connect(a, b);
            connectPlainly(plain, a, b);
            if (rng() % 4 == 0) {
                ASSERT_EQ(map.getBlocks(), plain) << "trial " << trial << " step " << step;
            }
            if (rng() % 16 == 0) {
                while (mergeOnce(plain)) {
                }
                ASSERT_EQ(map.blocks(), static_cast<int>(plain.size()));
                ASSERT_EQ(map.getBlocks(), plain) << "trial " << trial << " step " << step;
            }
        }
    }
}

TEST(AdjacencyMap, BlocksJoinOnlyWhenAskedFor)
{
    AdjacencyMap map;
    map.connect(3, 3);
    EXPECT_EQ(map.blocks(), 0);
    EXPECT_THROW(static_cast<void>(map.getBlock(0)), std::runtime_error);
    map.connect(1, 2);
    map.connect(3, 4);
    map.connect(2, 3);
    EXPECT_EQ(map.getBlocks(), (Blocks{{1, 2, 3}, {3, 4}}));
    EXPECT_EQ(map.getBlock(1), (std::set<int>{3, 4}));
    EXPECT_EQ(map.blocks(), 1);
    EXPECT_EQ(map.getBlocks(), (Blocks{{1, 2, 3, 4}}));
    map.clear();
    EXPECT_EQ(map.blocks(), 0);
    map.connect(4, 1);
    EXPECT_EQ(map.getBlocks(), (Blocks{{1, 4}}));
}

} // namespace
} // namespace lumo

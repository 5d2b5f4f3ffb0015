// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <cstddef>
#include <memory>
#include <set>
#include <vector>

namespace lumo {

/// Groups numbers into connected blocks, from connections between two of them:
///
///     AdjacencyMap map;
///     map.connect(1, 2);
///     map.connect(3, 4);
///     map.connect(2, 3); // {1, 2, 3} and {3, 4}
///     map.blocks();      // 1, and the block is {1, 2, 3, 4}
///
/// Blocks that turn out to be joined are merged by blocks() only; until then two
/// of them may share a number. What the object means is the partition; const
/// functions may change how it is stored, so that two calls on one object must
/// never run in parallel. Any int may be used.
///
/// connect() takes constant time on average; the first query after it inserts into the
/// std::sets what has come, and blocks() merges them.
class LUMO_CORE_EXPORT AdjacencyMap
{
public:
    /// No blocks.
    AdjacencyMap();
    AdjacencyMap(const AdjacencyMap&) = delete;
    AdjacencyMap& operator=(const AdjacencyMap&) = delete;
    ~AdjacencyMap();

    /// Records that a and b belong together. The first block, in the order of
    /// creation, that holds one of them gets the other too; if none does, {a, b}
    /// becomes a new block at the end. Nothing is recorded if a equals b.
    void connect(int a, int b) const;

    /// Merges the blocks that share a number. A merged block stands where its
    /// oldest one stood.
    /// \returns how many blocks there are; they are disjoint now
    int blocks() const;

    /// Block i as stored at present.
    /// \throws std::runtime_error if there is no such block
    [[nodiscard]] const std::set<int>& getBlock(std::size_t i) const;
    /// All blocks as stored at present. The reference holds as long as the object;
    /// connections made later show behind it after the next call of getBlocks(),
    /// getBlock() or blocks().
    [[nodiscard]] const std::vector<std::set<int>>& getBlocks() const;

    /// Removes all blocks.
    void clear();

private:
    struct Index;

    std::unique_ptr<std::vector<std::set<int>>> m_blocks;
    std::unique_ptr<Index> m_index; ///< which block holds a number
};

} // namespace lumo

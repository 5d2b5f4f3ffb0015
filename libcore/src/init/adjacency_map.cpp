// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/adjacency_map.h"

#include "init/block_of_number.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <stdexcept>

namespace lumo {

namespace {

using Block = BlockOfNumber::Block;

/// A number that has entered a block; ordered by block, then number.
struct Entry
{
    Block block = 0;
    int number = 0;

    auto operator<=>(const Entry&) const = default;
};

/// Appends to the sets what the entries say; linear for sets that are empty.
void insertSorted(std::vector<Entry>& entries, std::vector<std::set<int>>& blocks)
{
    std::sort(entries.begin(), entries.end());
    for (const Entry& entry : entries) {
        std::set<int>& block = blocks[entry.block];
        block.insert(block.end(), entry.number);
    }
    entries.clear();
}

void mergeInto(std::set<int>& target, std::set<int>& source)
{
    if (target.size() < source.size()) {
        target.swap(source);
    }
    target.merge(source);
    source.clear(); // of what both held
}

} // namespace

/// What connect() needs to know, and what the sets do not hold yet: they are
/// brought up to date when somebody asks for them. A number enters a block at
/// most once, because it is only ever put into a block before all that hold it.
struct AdjacencyMap::Index
{
    BlockOfNumber firstBlock; ///< of a number
    std::vector<Block>
        joinedTo; ///< block -> an earlier one that it shares a number with, or itself
    std::vector<Entry> pending;
    bool merged = true; ///< all blocks are joined to themselves

    /// The earliest block that `block` is joined to.
    Block rootOf(Block block)
    {
        while (joinedTo[block] != block) {
            joinedTo[block] = joinedTo[joinedTo[block]];
            block = joinedTo[block];
        }
        return block;
    }

    void join(Block a, Block b)
    {
        const Block rootA = rootOf(a);
        const Block rootB = rootOf(b);
        merged = merged && rootA == rootB;
        joinedTo[std::max(rootA, rootB)] = std::min(rootA, rootB);
    }

    void enter(int number, Block block)
    {
        firstBlock.set(number, block);
        pending.push_back({block, number});
    }

    void bringUpToDate(std::vector<std::set<int>>& blocks)
    {
        blocks.resize(joinedTo.size());
        insertSorted(pending, blocks);
    }
};

AdjacencyMap::AdjacencyMap()
    : m_blocks(std::make_unique<std::vector<std::set<int>>>())
    , m_index(std::make_unique<Index>())
{}

AdjacencyMap::~AdjacencyMap() = default;

void AdjacencyMap::connect(int a, int b) const
{
    if (a == b) {
        return;
    }
    Block blockA = m_index->firstBlock.of(a);
    Block blockB = m_index->firstBlock.of(b);
    if (blockA == blockB && blockA != BlockOfNumber::kNone) {
        return;
    }
    if (blockB < blockA) {
        std::swap(a, b);
        std::swap(blockA, blockB);
    }
    if (blockA == BlockOfNumber::kNone) {
        blockA = static_cast<Block>(m_index->joinedTo.size());
        m_index->joinedTo.push_back(blockA);
        m_index->enter(a, blockA);
    } else if (blockB != BlockOfNumber::kNone) {
        m_index->join(blockA, blockB);
    }
    m_index->enter(b, blockA);
}

int AdjacencyMap::blocks() const
{
    std::vector<std::set<int>>& blocks = *m_blocks;
    Index& index = *m_index;
    if (!index.merged) {
        // The earliest block of each group stays, in the order of creation.
        std::vector<Block> newBlock(index.joinedTo.size());
        Block count = 0;
        for (Block block = 0; block < newBlock.size(); ++block) {
            const Block root = index.rootOf(block);
            newBlock[block] = root == block ? count++ : newBlock[root];
            if (block < blocks.size() && newBlock[block] != block) {
                mergeInto(blocks[newBlock[block]], blocks[block]);
            }
        }
        for (Entry& entry : index.pending) {
            entry.block = newBlock[entry.block];
        }
        index.firstBlock.renumber(newBlock);
        index.joinedTo.resize(count);
        std::iota(index.joinedTo.begin(), index.joinedTo.end(), Block{0});
        index.merged = true;
        blocks.resize(std::min<std::size_t>(blocks.size(), count));
    }
    index.bringUpToDate(blocks);
    return static_cast<int>(blocks.size());
}

const std::set<int>& AdjacencyMap::getBlock(std::size_t i) const
{
    if (i >= m_index->joinedTo.size()) {
        throw std::runtime_error("Invalid block index.");
    }
    return getBlocks()[i];
}

const std::vector<std::set<int>>& AdjacencyMap::getBlocks() const
{
    if (!m_index->pending.empty()) {
        m_index->bringUpToDate(*m_blocks);
    }
    return *m_blocks;
}

void AdjacencyMap::clear()
{
    m_blocks->clear();
    *m_index = {};
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace lumo {

/// From a number to the block that holds it: a hash table with open addressing
/// in one piece of memory. A connection costs two look-ups and nothing else, so
/// that the nodes of a std::unordered_map would be most of its time.
class BlockOfNumber
{
public:
    using Block = std::uint32_t;
    /// Of a number that no block holds; above every block.
    static constexpr Block kNone = std::numeric_limits<Block>::max();

    BlockOfNumber() { clear(); }

    void clear()
    {
        m_slots.assign(std::size_t{1} << kStartBits, Slot{});
        m_shift = 32 - kStartBits;
        m_used = 0;
    }

    [[nodiscard]] Block of(int number) const { return m_slots[slotOf(number)].block; }

    /// \param block  not kNone
    void set(int number, Block block)
    {
        std::size_t slot = slotOf(number);
        if (m_slots[slot].block == kNone) {
            if (2 * ++m_used > m_slots.size()) {
                grow();
                slot = slotOf(number);
            }
            m_slots[slot].number = number;
        }
        m_slots[slot].block = block;
    }

    /// Replaces each block by what `newBlock` says.
    void renumber(const std::vector<Block>& newBlock)
    {
        for (Slot& slot : m_slots) {
            if (slot.block != kNone) {
                slot.block = newBlock[slot.block];
            }
        }
    }

private:
    struct Slot
    {
        int number = 0;
        Block block = kNone;
    };

    static constexpr int kStartBits = 4;

    /// Where the number stands, or the free place where it would.
    [[nodiscard]] std::size_t slotOf(int number) const
    {
        // Multiplication by 2^32 / golden ratio spreads runs of numbers evenly.
        std::size_t slot = (static_cast<std::uint32_t>(number) * 2654435769u) >> m_shift;
        while (m_slots[slot].block != kNone && m_slots[slot].number != number) {
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        return slot;
    }

    void grow()
    {
        std::vector<Slot> old(2 * m_slots.size());
        old.swap(m_slots);
        --m_shift;
        for (const Slot& slot : old) {
            if (slot.block != kNone) {
                m_slots[slotOf(slot.number)] = slot;
            }
        }
    }

    std::vector<Slot> m_slots; ///< a power of two, at most half of them used
    int m_shift = 0;
    std::size_t m_used = 0;
};

} // namespace lumo

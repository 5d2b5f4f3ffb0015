// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "byte_order.h"

#include <QByteArray>

#include <cstddef>

namespace lumo::exif {

/// The bytes of a TIFF structure (TIFF 6.0), read and changed in its own byte order.
/// Refers to memory of the caller; positions are the caller's to check against size().
class TiffBytes
{
public:
    static constexpr std::size_t kHeaderSize = 8;
    static constexpr std::size_t kEntrySize = 12;
    /// Entries of up to four bytes contain their value, others the position of it.
    static constexpr std::size_t kInlineSize = 4;

    /// Byte order by the first byte: 'I' is little-endian, as in TIFF headers.
    TiffBytes(unsigned char* data, std::size_t size)
        : TiffBytes(data, size, size >= 1 && data[0] == 'I')
    {}
    TiffBytes(unsigned char* data, std::size_t size, bool littleEndian)
        : m_data(data)
        , m_size(size)
        , m_little(littleEndian)
    {}

    /// Whether it starts with the header of TIFF or of a raw format that differs in its
    /// number only: 0x4f52 and 0x5352 of ORF, 0x55 of RW2.
    [[nodiscard]] bool isTiff() const
    {
        if (m_size < kHeaderSize || (m_data[0] != 'I' && m_data[0] != 'M') ||
            m_data[1] != m_data[0]) {
            return false;
        }
        const quint16 number = get16(2);
        return number == 42 || number == 0x4f52 || number == 0x5352 || number == 0x55;
    }
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] bool littleEndian() const { return m_little; }
    /// Whether `count` bytes from `at` on lie inside.
    [[nodiscard]] bool contains(std::size_t at, std::size_t count) const
    {
        return count <= m_size && at <= m_size - count;
    }
    [[nodiscard]] quint16 get16(std::size_t at) const
    {
        return readNumber<quint16>(m_data + at, m_little);
    }
    [[nodiscard]] quint32 get32(std::size_t at) const
    {
        return readNumber<quint32>(m_data + at, m_little);
    }
    void put16(std::size_t at, quint16 number)
    {
        m_little ? qToLittleEndian(number, m_data + at) : qToBigEndian(number, m_data + at);
    }
    void put32(std::size_t at, quint32 number)
    {
        m_little ? qToLittleEndian(number, m_data + at) : qToBigEndian(number, m_data + at);
    }
    [[nodiscard]] QByteArray copy(std::size_t at, std::size_t size) const
    {
        return {reinterpret_cast<const char*>(m_data + at), static_cast<int>(size)};
    }
    /// The structure that starts at `at`, with a byte order of its own.
    [[nodiscard]] TiffBytes from(std::size_t at) const { return {m_data + at, m_size - at}; }
    /// The same bytes in another byte order.
    [[nodiscard]] TiffBytes inOrder(bool littleEndian) const
    {
        return {m_data, m_size, littleEndian};
    }

    /// Turns the entry at `entry` into one of a single byte under a tag that nothing uses.
    void blankEntry(std::size_t entry)
    {
        constexpr quint16 kUnusedTag = 0xfff0;
        constexpr quint16 kByteType = 1;
        put16(entry, kUnusedTag);
        put16(entry + 2, kByteType);
        put32(entry + 4, 1);
    }

private:
    unsigned char* m_data;
    std::size_t m_size;
    bool m_little;
};

} // namespace lumo::exif

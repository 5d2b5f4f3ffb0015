// SPDX-License-Identifier: Apache-2.0
#include "ciff_directories.h"

#include "byte_order.h"

#include <optional>

namespace lumo::exif {
namespace {

/// Real files have 120 entries in directories of three levels.
constexpr int kMaxEntries = 4096;
constexpr int kMaxDepth = 8;
/// Without pictures; real files have 60 KiB.
constexpr std::size_t kMaxListedBytes = 8 * 1024 * 1024;

constexpr std::size_t kEntrySize = 10;

/// By the CIFF specification, revision 1.0: a directory ends with the position of its
/// entries (in the directory), which are tag, size and position each.
class CiffWalk
{
public:
    CiffWalk(const unsigned char* data, bool littleEndian)
        : m_data(data)
        , m_little(littleEndian)
    {}

    void walk(std::size_t begin, std::size_t size, int depth)
    {
        if (depth > kMaxDepth) {
            m_fault =
                QStringLiteral("its directories are nested deeper than %1 levels").arg(kMaxDepth);
        }
        if (size < 4 || m_fault) {
            return;
        }
        const std::size_t list = get32(begin + size - 4);
        if (list > size - 2) {
            return;
        }
        const std::size_t entries = get16(begin + list);
        if (entries * kEntrySize > size - list - 2) {
            return;
        }
        for (std::size_t i = 0; i < entries && !m_fault; ++i) {
            enter(begin, size, begin + list + 2 + i * kEntrySize, depth);
        }
    }

    [[nodiscard]] const std::optional<QString>& fault() const { return m_fault; }

private:
    void enter(std::size_t begin, std::size_t size, std::size_t entry, int depth)
    {
        if (++m_entries > kMaxEntries) {
            m_fault = QStringLiteral("its directories list more than %1 entries").arg(kMaxEntries);
            return;
        }
        constexpr quint16 kTypeMask = 0x3800;
        constexpr quint16 kDirectory = 0x2800;
        constexpr quint16 kOtherDirectory = 0x3000;
        constexpr quint16 kInEntry = 0x4000;
        const auto type = static_cast<quint16>(get16(entry) & kTypeMask);
        const std::size_t length = get32(entry + 2);
        const std::size_t offset = get32(entry + 6);
        const bool isDirectory = type == kDirectory || type == kOtherDirectory;
        constexpr quint16 kTagMask = 0x3fff;
        constexpr quint16 kRawPicture = 0x2005;
        constexpr quint16 kPreview = 0x2007;
        const auto tag = static_cast<quint16>(get16(entry) & kTagMask);
        const bool isElsewhere = (get16(entry) & kInEntry) == 0 && length <= size;
        if (!isDirectory && isElsewhere && tag != kRawPicture && tag != kPreview) {
            m_listedBytes += length;
        }
        if (m_listedBytes > kMaxListedBytes) {
            m_fault =
                QStringLiteral("its entries list more than %1 MiB").arg(kMaxListedBytes >> 20);
        } else if (isDirectory && length <= size && offset <= size - length) {
            walk(begin + offset, length, depth + 1);
        }
    }

    [[nodiscard]] quint16 get16(std::size_t at) const
    {
        return readNumber<quint16>(m_data + at, m_little);
    }
    [[nodiscard]] quint32 get32(std::size_t at) const
    {
        return readNumber<quint32>(m_data + at, m_little);
    }

    const unsigned char* m_data;
    bool m_little;
    int m_entries = 0;
    std::size_t m_listedBytes = 0;
    std::optional<QString> m_fault;
};

} // namespace

bool directoriesAreCheap(const unsigned char* data, std::size_t size, QString& error)
{
    constexpr std::size_t kHeader = 14;
    if (size < kHeader) {
        return true;
    }
    const bool littleEndian = data[0] == 'I';
    const std::size_t begin = readNumber<quint32>(data + 2, littleEndian);
    if (begin > size) {
        return true;
    }
    CiffWalk directories(data, littleEndian);
    directories.walk(begin, size - begin, 0);
    error = directories.fault().value_or(error);
    return !directories.fault();
}

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#include "tiff_limits.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <vector>

namespace lumo::exif {
namespace {

constexpr std::size_t kMaxMakerNoteBytes = 8 * 1024 * 1024;
constexpr std::size_t kMaxListedBytes = 8 * 1024 * 1024;
/// What an entry may list when the rest is used up: 8 numbers of 8 bytes.
constexpr std::size_t kTinyBytes = 64;
/// exiv2 reads no directory with more entries.
constexpr std::size_t kMaxEntries = 256;
constexpr std::size_t kMaxDirectories = 256;
/// Real files have some hundreds. Looking at a million takes about 10 ms.
constexpr std::size_t kMaxEntriesOfFile = 1'000'000;
/// The headers that makers put before the directory of a maker note are shorter.
constexpr std::size_t kMaxMakerNoteHeader = 64;

constexpr quint16 kSubDirectoriesTag = 0x014a;
constexpr quint16 kExifTag = 0x8769;
constexpr quint16 kGpsTag = 0x8825;
constexpr quint16 kMakerNoteTag = 0x927c;
constexpr quint16 kInteroperabilityTag = 0xa005;

constexpr quint16 kLongType = 4;
constexpr quint16 kUndefinedType = 7;
constexpr quint16 kDirectoryType = 13;
constexpr std::array<std::size_t, 14> kTypeSizes = {1, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

/// What reading would cost so far, of all structures of one file.
struct TiffCost
{
    std::size_t listedBytes = 0;
    std::size_t directories = 0;
    std::size_t entries = 0; ///< looked at, several times where directories overlap

    [[nodiscard]] bool tooHigh() const { return entries > kMaxEntriesOfFile; }
};

/// Goes through all directories that a reader of EXIF would read.
class TiffLimiter
{
public:
    explicit TiffLimiter(TiffCost& cost)
        : m_cost(cost)
    {}

    void limit(TiffBytes tiff)
    {
        m_pending.push_back(tiff.get32(4));
        while (!m_pending.empty() && !m_cost.tooHigh()) {
            const std::size_t directory = m_pending.back();
            m_pending.pop_back();
            limitDirectory(tiff, directory);
        }
    }

private:
    /// \returns  the number of entries of the directory at `at` that lie inside; 0 if
    ///     it was visited before or is beyond what is read
    std::size_t enter(const TiffBytes& tiff, std::size_t at)
    {
        if (!tiff.contains(at, 2) || !m_visited.insert(at).second) {
            return 0;
        }
        const std::size_t entries = tiff.get16(at);
        const std::size_t room = (tiff.size() - at - 2) / TiffBytes::kEntrySize;
        if (entries > kMaxEntries) {
            return 0;
        }
        ++m_cost.directories;
        m_cost.entries += entries;
        return std::min(entries, room);
    }

    void limitDirectory(TiffBytes tiff, std::size_t at)
    {
        const std::size_t entries = enter(tiff, at);
        for (std::size_t i = 0; i < entries; ++i) {
            limitEntry(tiff, at + 2 + i * TiffBytes::kEntrySize);
        }
        const std::size_t end = at + 2 + entries * TiffBytes::kEntrySize;
        if (entries == 0 || !tiff.contains(end, 4)) {
            return;
        }
        if (m_cost.directories < kMaxDirectories) {
            m_pending.push_back(tiff.get32(end));
        } else {
            tiff.put32(end, 0);
        }
    }

    void limitEntry(TiffBytes tiff, std::size_t entry)
    {
        const quint16 tag = tiff.get16(entry);
        const bool isMakerNote = tag == kMakerNoteTag;
        if (!fits(tiff, entry, isMakerNote ? kMaxMakerNoteBytes : kMaxTagBytes)) {
            tiff.blankEntry(entry);
        } else if (isMakerNote) {
            limitMakerNote(tiff, tiff.get32(entry + 8));
        } else if (
            tag == kSubDirectoriesTag || tag == kExifTag || tag == kGpsTag ||
            tag == kInteroperabilityTag) {
            followDirectories(tiff, entry);
        }
    }

    static std::size_t listedBytes(const TiffBytes& tiff, std::size_t entry)
    {
        const std::size_t type = tiff.get16(entry + 2);
        const std::size_t each = type < kTypeSizes.size() ? kTypeSizes[type] : 1;
        return each * tiff.get32(entry + 4);
    }

    /// Counts what the entry lists.
    bool fits(const TiffBytes& tiff, std::size_t entry, std::size_t most)
    {
        const std::size_t bytes = listedBytes(tiff, entry);
        if (bytes <= TiffBytes::kInlineSize || bytes > tiff.size()) {
            return true; // costs nothing: what is not in the file is not read
        }
        m_cost.listedBytes += std::min(bytes, most);
        return bytes <= most && (m_cost.listedBytes <= kMaxListedBytes || bytes <= kTinyBytes);
    }

    void followDirectories(TiffBytes tiff, std::size_t entry)
    {
        constexpr std::size_t kMostSubDirectories = 9; // that exiv2 follows
        if (m_cost.directories + m_pending.size() >= kMaxDirectories) {
            tiff.blankEntry(entry);
            return;
        }
        const std::size_t count = std::min<std::size_t>(tiff.get32(entry + 4), kMostSubDirectories);
        const std::size_t list = count == 1 ? entry + 8 : tiff.get32(entry + 8);
        for (std::size_t i = 0; i < count && tiff.contains(list + 4 * i, 4); ++i) {
            m_pending.push_back(tiff.get32(list + 4 * i));
        }
    }

    /// Where the directory of a maker note begins, in which byte order, and from where
    /// its positions count differs by maker: whatever may be one is limited.
    void limitMakerNote(TiffBytes tiff, std::size_t at)
    {
        for (std::size_t header = 0; header < kMaxMakerNoteHeader; header += 2) {
            for (const bool littleEndian : {true, false}) {
                limitMakerDirectory(tiff.inOrder(littleEndian), at + header, at, 0);
            }
        }
    }

    /// Whether several entries have a type each: random bytes hardly ever do. A directory
    /// of fewer costs little.
    bool isDirectory(const TiffBytes& tiff, std::size_t at)
    {
        if (m_cost.tooHigh() || !tiff.contains(at, 2)) {
            return false;
        }
        ++m_cost.entries;
        constexpr std::size_t kFewestEntries = 4;
        const std::size_t entries = tiff.get16(at);
        if (entries < kFewestEntries || entries > kMaxEntries ||
            !tiff.contains(at + 2, entries * TiffBytes::kEntrySize)) {
            return false;
        }
        for (std::size_t i = 0; i < entries; ++i) {
            const quint16 type = tiff.get16(at + 4 + i * TiffBytes::kEntrySize);
            ++m_cost.entries;
            if (type == 0 || type >= kTypeSizes.size()) {
                return false;
            }
        }
        return true;
    }

    void limitMakerDirectory(TiffBytes tiff, std::size_t at, std::size_t note, int depth)
    {
        constexpr int kMaxDepth = 2; // of directories inside maker notes
        if (depth > kMaxDepth || !isDirectory(tiff, at)) {
            return;
        }
        const std::size_t entries = enter(tiff, at);
        for (std::size_t i = 0; i < entries; ++i) {
            const std::size_t entry = at + 2 + i * TiffBytes::kEntrySize;
            const quint16 type = tiff.get16(entry + 2);
            if (!fits(tiff, entry, kMaxTagBytes)) {
                tiff.blankEntry(entry);
            } else if (type == kLongType || type == kDirectoryType || type == kUndefinedType) {
                // Positions count from the structure, the note, or behind its header.
                for (const std::size_t base : {std::size_t{0}, note, note + 10, note + 12}) {
                    limitMakerDirectory(tiff, base + tiff.get32(entry + 8), note, depth + 1);
                }
            }
        }
    }

    TiffCost& m_cost;
    std::set<std::size_t> m_visited;
    std::vector<std::size_t> m_pending;
};

} // namespace

bool limitTiff(TiffBytes tiff)
{
    TiffCost cost;
    if (tiff.isTiff()) {
        TiffLimiter(cost).limit(tiff);
    }
    return !cost.tooHigh();
}

bool limitEmbeddedTiffs(unsigned char* data, std::size_t size)
{
    TiffCost cost;
    unsigned char* const end = data + size;
    for (unsigned char* at = data; at < end && !cost.tooHigh(); ++at) {
        // The number 42 is in byte 2 or 3; the other one is 0.
        at = static_cast<unsigned char*>(std::memchr(at, 42, static_cast<std::size_t>(end - at)));
        if (at == nullptr) {
            break;
        }
        for (const std::ptrdiff_t before : {2, 3}) {
            if (at - data >= before) {
                const TiffBytes tiff(at - before, static_cast<std::size_t>(end - at + before));
                if (tiff.isTiff()) {
                    TiffLimiter(cost).limit(tiff);
                }
            }
        }
    }
    return !cost.tooHigh();
}

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#include "bmff_boxes.h"

#include <QtEndian>

#include <array>
#include <cstring>
#include <optional>

namespace lumo::exif {
namespace {

/// Real files have three: "meta", "iprp", "ipco".
constexpr int kMaxDepth = 8;
/// A picture of 200 megapixels in tiles of 512 x 512 has about 800 items and boxes of them.
constexpr int kMaxBoxes = 20000;
/// Boxes with metadata, or with references to them. CR3 has four, others one.
constexpr int kMaxMetadataBoxes = 16;

constexpr std::size_t kBoxHeader = 8;

using BoxType = std::array<char, 4>;

constexpr BoxType type(const char (&name)[5])
{
    return {name[0], name[1], name[2], name[3]};
}

template <std::size_t Count>
bool isOneOf(const BoxType& box, const std::array<BoxType, Count>& types)
{
    for (const BoxType& one : types) {
        if (box == one) {
            return true;
        }
    }
    return false;
}

struct Box
{
    BoxType type{};
    std::size_t headerSize = kBoxHeader;
    std::size_t size = 0; ///< with the header; 0 if it does not fit
};

Box boxAt(const unsigned char* data, std::size_t begin, std::size_t end)
{
    Box box;
    quint64 size = qFromBigEndian<quint32>(data + begin);
    std::memcpy(box.type.data(), data + begin + 4, box.type.size());
    if (size == 1) { // a long one follows
        box.headerSize = 2 * kBoxHeader;
        size =
            end - begin < box.headerSize ? 0 : qFromBigEndian<quint64>(data + begin + kBoxHeader);
    }
    if (size >= box.headerSize && size <= end - begin) {
        box.size = static_cast<std::size_t>(size);
    }
    return box;
}

class BoxWalk
{
public:
    explicit BoxWalk(const unsigned char* data)
        : m_data(data)
    {}

    void walk(std::size_t begin, std::size_t end, int depth)
    {
        if (depth > kMaxDepth) {
            m_fault = QStringLiteral("its boxes are nested deeper than %1 levels").arg(kMaxDepth);
        }
        while (!m_fault && end - begin >= kBoxHeader) {
            const Box box = boxAt(m_data, begin, end);
            if (box.size == 0) {
                return; // damaged: what comes after cannot be found
            }
            count(box.type);
            const std::size_t inside =
                box.headerSize + beforeBoxes(box.type, begin + box.headerSize, end);
            if (!m_fault && inside < box.size && containsBoxes(box.type)) {
                walk(begin + inside, begin + box.size, depth + 1);
            }
            begin += box.size;
        }
    }

    [[nodiscard]] const std::optional<QString>& fault() const { return m_fault; }

private:
    static bool containsBoxes(const BoxType& box)
    {
        static constexpr std::array kParents = {type("moov"), type("meta"), type("iprp"),
                                                type("ipco"), type("iinf"), type("uuid")};
        return isOneOf(box, kParents);
    }

    /// What comes before the boxes inside: version and flags, the count of items, or an
    /// identifier. What is not a box there is damaged, and ends the walk.
    [[nodiscard]] std::size_t beforeBoxes(
        const BoxType& box, std::size_t begin, std::size_t end) const
    {
        constexpr std::size_t kVersion = 4;
        constexpr std::size_t kItemCount = 2;
        constexpr std::size_t kIdentifier = 16;
        if (box == type("meta")) {
            return kVersion;
        }
        if (box == type("iinf")) {
            return kVersion + kItemCount;
        }
        if (box != type("uuid")) {
            return 0;
        }
        // The previews of CR3 have eight bytes more.
        static constexpr std::array<unsigned char, 4> kPreviews = {0xea, 0xf4, 0x2b, 0x5e};
        const bool isPreviews =
            end - begin >= kIdentifier && std::memcmp(m_data + begin, kPreviews.data(), 4) == 0;
        return isPreviews ? kIdentifier + 8 : kIdentifier;
    }

    void count(const BoxType& box)
    {
        static constexpr std::array kMetadata = {type("meta"), type("CMT1"), type("CMT2"),
                                                 type("CMT3"), type("CMT4"), type("Exif"),
                                                 type("xml ")};
        if (isOneOf(box, kMetadata) && ++m_metadataBoxes > kMaxMetadataBoxes) {
            m_fault =
                QStringLiteral("it has more than %1 boxes of metadata").arg(kMaxMetadataBoxes);
        } else if (++m_boxes > kMaxBoxes) {
            m_fault = QStringLiteral("it has more than %1 boxes").arg(kMaxBoxes);
        }
    }

    const unsigned char* m_data;
    int m_boxes = 0;
    int m_metadataBoxes = 0;
    std::optional<QString> m_fault;
};

} // namespace

bool boxesAreCheap(const unsigned char* data, std::size_t size, QString& error)
{
    BoxWalk boxes(data);
    boxes.walk(0, size, 0);
    error = boxes.fault().value_or(error);
    return !boxes.fault();
}

ByteRange mediaData(const unsigned char* data, std::size_t size)
{
    std::size_t begin = 0;
    while (size - begin >= kBoxHeader) {
        const Box box = boxAt(data, begin, size);
        if (box.size == 0) {
            break;
        }
        if (box.type == type("mdat")) {
            return {begin, box.size};
        }
        begin += box.size;
    }
    return {size, 0};
}

} // namespace lumo::exif

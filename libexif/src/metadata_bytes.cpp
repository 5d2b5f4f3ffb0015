// SPDX-License-Identifier: Apache-2.0
#include "metadata_bytes.h"

#include "jpeg_segments.h"

#include <QFile>
#include <QtEndian>

#include <limits>

namespace lumo::exif {
namespace {

constexpr quint16 kXmpTag = 700;
constexpr quint16 kUnusedTag = 0xfff0;
constexpr quint16 kByteType = 1;
constexpr std::size_t kTiffHeader = 8;
constexpr std::size_t kEntrySize = 12;

/// Numbers of a TIFF structure, in its byte order.
class TiffBytes
{
public:
    TiffBytes(unsigned char* data, std::size_t size)
        : m_data(data)
        , m_size(size)
        , m_little(size >= 2 && data[0] == 'I')
    {}

    [[nodiscard]] bool isTiff() const
    {
        return m_size >= kTiffHeader && (m_data[0] == 'I' || m_data[0] == 'M') &&
               m_data[1] == m_data[0] && get16(2) == 42;
    }
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] quint16 get16(std::size_t at) const
    {
        return m_little ? qFromLittleEndian<quint16>(m_data + at)
                        : qFromBigEndian<quint16>(m_data + at);
    }
    [[nodiscard]] quint32 get32(std::size_t at) const
    {
        return m_little ? qFromLittleEndian<quint32>(m_data + at)
                        : qFromBigEndian<quint32>(m_data + at);
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

private:
    unsigned char* m_data;
    std::size_t m_size;
    bool m_little;
};

/// The bytes of an entry of single bytes, wherever they are; empty if they are not
/// in the file.
QByteArray entryBytes(const TiffBytes& tiff, std::size_t entry)
{
    constexpr std::size_t kInline = 4;
    const std::size_t count = tiff.get32(entry + 4);
    const std::size_t at = count <= kInline ? entry + 8 : tiff.get32(entry + 8);
    const bool held = count <= tiff.size() && at <= tiff.size() - count;
    return held && count <= std::numeric_limits<int>::max() ? tiff.copy(at, count) : QByteArray();
}

/// Makes the XMP entries of the first directory, where the format puts them, into
/// entries of another tag.
/// \returns  the first packet
QByteArray hideXmpEntries(TiffBytes tiff)
{
    QByteArray packet;
    if (!tiff.isTiff()) {
        return packet;
    }
    const std::size_t directory = tiff.get32(4);
    if (directory > tiff.size() - 2) {
        return packet;
    }
    const std::size_t entries = tiff.get16(directory);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * kEntrySize;
        if (entry + kEntrySize > tiff.size()) {
            break;
        }
        if (tiff.get16(entry) == kXmpTag) {
            if (packet.isEmpty()) {
                packet = entryBytes(tiff, entry);
            }
            tiff.put16(entry, kUnusedTag);
            tiff.put16(entry + 2, kByteType);
            tiff.put32(entry + 4, 1);
        }
    }
    return packet;
}

std::optional<MetadataBytes> fromJpeg(QFile& file)
{
    static const QByteArray exifMark("Exif\0\0", 6);
    static const QByteArray xmpMark("http://ns.adobe.com/xap/1.0/\0", 29);
    MetadataBytes result;
    result.header = QByteArray("\xff\xd8");
    JpegSegments segments(file);
    JpegSegment segment;
    while (segments.next(segment)) {
        if (segment.type == JpegSegment::kApp1 && segment.content.startsWith(xmpMark)) {
            if (result.xmpPacket.isEmpty()) {
                result.xmpPacket = segment.content.mid(xmpMark.size());
            }
            continue;
        }
        if (segment.type == JpegSegment::kApp1 && segment.content.startsWith(exifMark)) {
            auto* tiff = reinterpret_cast<unsigned char*>(segment.content.data());
            const auto size = static_cast<std::size_t>(segment.content.size());
            const auto mark = static_cast<std::size_t>(exifMark.size());
            // A packet here is not where JPEG files have it: exiv2 would not count it.
            static_cast<void>(hideXmpEntries({tiff + mark, size - mark}));
        }
        result.header += segment.bytes();
    }
    if (!segments.atPicture()) {
        return std::nullopt;
    }
    result.header += QByteArray("\xff\xda\x00\x02\xff\xd9", 6);
    result.data = reinterpret_cast<const unsigned char*>(result.header.constData());
    result.size = static_cast<std::size_t>(result.header.size());
    return result;
}

std::optional<MetadataBytes> fromTiff(QFile& file)
{
    const auto size = static_cast<std::size_t>(file.size());
    unsigned char* data = file.map(0, file.size(), QFileDevice::MapPrivateOption);
    if (data == nullptr || !TiffBytes(data, size).isTiff()) {
        return std::nullopt;
    }
    MetadataBytes result;
    result.data = data;
    result.size = size;
    result.xmpPacket = hideXmpEntries({data, size});
    return result;
}

} // namespace

std::optional<MetadataBytes> takeOutXmp(QFile& file)
{
    if (!file.seek(0)) {
        return std::nullopt;
    }
    const QByteArray mark = file.read(4);
    if (mark.startsWith("\xff\xd8")) {
        return fromJpeg(file);
    }
    const bool isTiff = mark == QByteArray("II\x2a\0", 4) || mark == QByteArray("MM\0\x2a", 4);
    return isTiff ? fromTiff(file) : std::nullopt;
}

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#include "metadata_bytes.h"

#include "bmff_boxes.h"
#include "ciff_directories.h"
#include "flir_block.h"
#include "jpeg_segments.h"
#include "tiff_limits.h"

#include <QFile>

#include <limits>

namespace lumo::exif {
namespace {

constexpr quint16 kXmpTag = 700;

/// The bytes of an entry of single bytes, wherever they are; empty if they are not
/// in the file.
QByteArray entryBytes(const TiffBytes& tiff, std::size_t entry)
{
    const std::size_t count = tiff.get32(entry + 4);
    const std::size_t at = count <= TiffBytes::kInlineSize ? entry + 8 : tiff.get32(entry + 8);
    const bool held = tiff.contains(at, count);
    return held && count <= std::numeric_limits<int>::max() ? tiff.copy(at, count) : QByteArray();
}

/// Blanks the XMP entries of the first directory, where the format puts them.
/// \returns  the first packet
QByteArray hideXmpEntries(TiffBytes tiff)
{
    QByteArray packet;
    if (!tiff.isTiff() || !tiff.contains(tiff.get32(4), 2)) {
        return packet;
    }
    const std::size_t directory = tiff.get32(4);
    const std::size_t entries = tiff.get16(directory);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * TiffBytes::kEntrySize;
        if (entry + TiffBytes::kEntrySize > tiff.size()) {
            break;
        }
        if (tiff.get16(entry) == kXmpTag) {
            if (packet.isEmpty()) {
                packet = entryBytes(tiff, entry);
            }
            tiff.blankEntry(entry);
        }
    }
    return packet;
}

QString tooManyEntries()
{
    return QStringLiteral("too expensive to read: its directories list over a million entries");
}

/// The TIFF structure of an EXIF segment, limited; a packet in it is not where JPEG files
/// have theirs, and is dropped.
bool limitExifSegment(QByteArray& content, int mark)
{
    const TiffBytes tiff(
        reinterpret_cast<unsigned char*>(content.data()) + mark,
        static_cast<std::size_t>(content.size() - mark));
    static_cast<void>(hideXmpEntries(tiff));
    return limitTiff(tiff);
}

bool prepareJpeg(QFile& file, MetadataBytes& result, QString& error)
{
    static const QByteArray exifMark("Exif\0\0", 6);
    static const QByteArray xmpMark("http://ns.adobe.com/xap/1.0/\0", 29);
    constexpr int kMaxHeader = 1024 * 1024; // a segment has at most 64 KiB, and one is usual
    result.header = QByteArray("\xff\xd8");
    FlirSegments thermal;
    JpegSegments segments(file);
    JpegSegment segment;
    while (segments.next(segment)) {
        const bool isApp1 = segment.type == JpegSegment::kApp1;
        if (isApp1 && segment.content.startsWith(xmpMark) && result.xmpPacket.isEmpty()) {
            result.xmpPacket = segment.content.mid(xmpMark.size());
        }
        if (isApp1) {
            thermal.add(segment.content);
        }
        const bool isExif = isApp1 && segment.content.startsWith(exifMark);
        if (isExif && !limitExifSegment(segment.content, exifMark.size())) {
            error = tooManyEntries();
            return false;
        }
        if ((isExif || segment.isFrameHeader()) && result.header.size() < kMaxHeader) {
            result.header += segment.bytes();
        }
    }
    result.thermalBlock = thermal.block();
    if (!segments.atPicture()) {
        result.damage = QStringLiteral("truncated or damaged before its picture");
    }
    result.header += QByteArray("\xff\xda\x00\x02\xff\xd9", 6);
    result.data = reinterpret_cast<const unsigned char*>(result.header.constData());
    result.size = static_cast<std::size_t>(result.header.size());
    return true;
}

/// Whether the outline of the file is cheap to read.
bool outlineIsCheap(FileKind kind, const unsigned char* data, std::size_t size, QString& error)
{
    if (kind == FileKind::Bmff || kind == FileKind::Cr3) {
        return boxesAreCheap(data, size, error);
    }
    return kind != FileKind::Crw || directoriesAreCheap(data, size, error);
}

/// Formats in which EXIF is somewhere inside. The picture of a CR3 file, of some 30 MB, is
/// left out: reading it would take longer than all the rest. CRW has no TIFF structures.
bool limitContainer(FileKind kind, unsigned char* data, std::size_t size, QString& error)
{
    QString expensive;
    if (!outlineIsCheap(kind, data, size, expensive)) {
        error = QStringLiteral("too expensive to read: %1").arg(expensive);
        return false;
    }
    const ByteRange skipped = kind == FileKind::Cr3   ? mediaData(data, size)
                              : kind == FileKind::Crw ? ByteRange{0, size}
                                                      : ByteRange{size, 0};
    const std::size_t end = skipped.begin + skipped.size;
    if (!limitEmbeddedTiffs(data, skipped.begin) || !limitEmbeddedTiffs(data + end, size - end)) {
        error = tooManyEntries();
        return false;
    }
    return true;
}

bool prepareMapped(QFile& file, MetadataBytes& result, QString& error)
{
    const auto size = static_cast<std::size_t>(file.size());
    unsigned char* data = file.map(0, file.size(), QFileDevice::MapPrivateOption);
    if (data == nullptr) {
        error = QStringLiteral("cannot be read: %1").arg(file.errorString().simplified());
        return false;
    }
    result.data = data;
    result.size = size;
    if (result.kind != FileKind::Tiff) {
        return limitContainer(result.kind, data, size, error);
    }
    const TiffBytes tiff(data, size);
    result.xmpPacket = hideXmpEntries(tiff);
    if (!limitTiff(tiff)) {
        error = tooManyEntries();
        return false;
    }
    return true;
}

} // namespace

bool prepareMetadata(QFile& file, MetadataBytes& bytes, QString& error)
{
    MetadataBytes result;
    const QByteArray head = file.seek(0) ? file.read(kFileHeadSize) : QByteArray();
    QString refused;
    result.kind = fileKind(head, refused);
    if (result.kind == FileKind::Refused) {
        error = QStringLiteral("not a picture with EXIF data: %1").arg(refused);
        return false;
    }
    const bool prepared = result.kind == FileKind::Jpeg ? prepareJpeg(file, result, error)
                                                        : prepareMapped(file, result, error);
    if (prepared) {
        bytes = result;
    }
    return prepared;
}

} // namespace lumo::exif

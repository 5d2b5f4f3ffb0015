// SPDX-License-Identifier: Apache-2.0
#include "exif_text.h"
#include "serial_number.h"

#include <QIODevice>
#include <QtEndian>

namespace lumo::exif {
namespace {

// The block starts at byte 8 of the file with "IIII" or "MMMM" (its byte order);
// offsets count from there. At 8 stands the offset of a directory: the number of
// entries, a number without meaning here, and the entries of four uint32: tag,
// type, size in bytes, and the value or, above 4 bytes, its offset.
constexpr qint64 kBlockStart = 8;
constexpr int kEntryBytes = 16;
constexpr quint32 kMaxEntries = 10000;
constexpr quint32 kSerialNumberTag = 0x0102;
constexpr quint32 kMaxSerialBytes = 256;

QByteArray readAt(QIODevice& file, qint64 position, qint64 size)
{
    const bool inside = position >= 0 && size <= file.size() - position;
    return inside && file.seek(position) ? file.read(size) : QByteArray();
}

quint32 word(const QByteArray& bytes, int index, bool bigEndian)
{
    const char* at = bytes.constData() + index * static_cast<int>(sizeof(quint32));
    return bigEndian ? qFromBigEndian<quint32>(at) : qFromLittleEndian<quint32>(at);
}

} // namespace

QString readPhaseOneSerialNumber(QIODevice& file)
{
    const QByteArray head = readAt(file, kBlockStart, 12);
    const bool bigEndian = head.startsWith("MMMM");
    if (!bigEndian && !head.startsWith("IIII")) {
        return {};
    }
    const qint64 directory = kBlockStart + word(head, 2, bigEndian);
    const QByteArray header = readAt(file, directory, 8);
    const quint32 count = header.isEmpty() ? 0 : word(header, 0, bigEndian);
    const QByteArray entries = count > kMaxEntries
                                   ? QByteArray()
                                   : readAt(file, directory + 8, qint64(count) * kEntryBytes);
    for (int i = 0; i < entries.size() / kEntryBytes; ++i) {
        const quint32 size = word(entries, 4 * i + 2, bigEndian);
        if (word(entries, 4 * i, bigEndian) == kSerialNumberTag && size <= kMaxSerialBytes) {
            const QByteArray text =
                size > sizeof(quint32)
                    ? readAt(file, kBlockStart + word(entries, 4 * i + 3, bigEndian), size)
                    : entries.mid(kEntryBytes * i + 12, static_cast<int>(size));
            return cleanedText(decodedText(text));
        }
    }
    return {};
}

} // namespace lumo::exif

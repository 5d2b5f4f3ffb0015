// SPDX-License-Identifier: Apache-2.0
#include "flir_block.h"

#include "exif_text.h"

#include <QtEndian>

#include <algorithm>

namespace lumo::exif {
namespace {

/// "FLIR", a NUL, the number 1, the number of this segment and that of the last one.
constexpr int kSegmentHeader = 8;
constexpr int kNumberAt = 6;
constexpr int kMaxBlock = 8 * 1024 * 1024;

/// Positions and numbers of the format; bytes of the block unless said otherwise.
constexpr qint64 kVersionAt = 0x14;
constexpr qint64 kDirectoryAt = 0x18;
constexpr qint64 kHeaderSize = 0x40;
constexpr qint64 kEntrySize = 0x20;
constexpr quint32 kMaxEntries = 1024; // real blocks have about 14
constexpr quint16 kRawPicture = 0x01;
constexpr quint16 kCamera = 0x20;
// In the record of the camera.
constexpr qint64 kSerialNumberAt = 0x104;
constexpr qint64 kSerialNumberSize = 16;
constexpr qint64 kLensAt = 0x170;
constexpr qint64 kLensSize = 32;
constexpr qint64 kFieldOfViewAt = 0x1b4;

/// Bytes whose byte order is known. Reading beyond the end gives 0 or nothing.
class Record
{
public:
    Record(QByteArray bytes, bool littleEndian)
        : m_bytes(std::move(bytes))
        , m_little(littleEndian)
    {}

    [[nodiscard]] quint16 number16(qint64 at) const { return number<quint16>(at); }
    [[nodiscard]] quint32 number32(qint64 at) const { return number<quint32>(at); }
    [[nodiscard]] double real32(qint64 at) const { return static_cast<double>(number<float>(at)); }
    [[nodiscard]] QString text(qint64 at, qint64 size) const
    {
        return contains(at, size) ? cleanedText(decodedText(
                                        m_bytes.mid(static_cast<int>(at), static_cast<int>(size))))
                                  : QString();
    }
    [[nodiscard]] bool contains(qint64 at, qint64 size) const
    {
        return at >= 0 && size >= 0 && at <= m_bytes.size() - size;
    }
    [[nodiscard]] QByteArray part(qint64 at, qint64 size) const
    {
        return contains(at, size) ? m_bytes.mid(static_cast<int>(at), static_cast<int>(size))
                                  : QByteArray();
    }

private:
    template <typename Number>
    [[nodiscard]] Number number(qint64 at) const
    {
        if (!contains(at, sizeof(Number))) {
            return Number{};
        }
        const char* bytes = m_bytes.constData() + at;
        return m_little ? qFromLittleEndian<Number>(bytes) : qFromBigEndian<Number>(bytes);
    }

    QByteArray m_bytes;
    bool m_little;
};

/// The start of the record that an entry names. It begins with the number 2, in a byte
/// order of its own.
Record recordAt(const Record& header, qint64 entry)
{
    constexpr quint32 kMaxRead = 4096; // what is read of it is far before
    const QByteArray bytes = header.part(
        header.number32(entry + 0x0c), std::min(header.number32(entry + 0x10), kMaxRead));
    return {bytes, bytes.startsWith(QByteArray("\x02\0", 2))};
}

void readCamera(const Record& camera, FlirBlock& result)
{
    constexpr double kWidestDeg = 180.0;
    result.serialNumber = camera.text(kSerialNumberAt, kSerialNumberSize);
    result.lensModel = camera.text(kLensAt, kLensSize);
    const double fieldOfView = camera.real32(kFieldOfViewAt);
    if (fieldOfView > 0.0 && fieldOfView < kWidestDeg) {
        result.fieldOfViewDeg = fieldOfView;
    }
}

} // namespace

void FlirSegments::add(const QByteArray& segment)
{
    static const QByteArray mark("FLIR\0\1", 6);
    if (!segment.startsWith(mark) || segment.size() <= kSegmentHeader) {
        return;
    }
    const int number = static_cast<unsigned char>(segment[kNumberAt]);
    if (number == m_next && m_block.size() + segment.size() <= kMaxBlock) {
        m_block += segment.mid(kSegmentHeader);
        ++m_next;
    }
}

FlirBlock readFlirBlock(const QByteArray& block)
{
    FlirBlock result;
    if (block.size() < kHeaderSize ||
        !(block.startsWith(QByteArray("FFF\0", 4)) || block.startsWith(QByteArray("AFF\0", 4)))) {
        return result;
    }
    constexpr quint32 kSmallNumber = 0x10000; // versions are about 100
    const bool littleEndian =
        qFromLittleEndian<quint32>(block.constData() + kVersionAt) < kSmallNumber;
    const Record header(block, littleEndian);
    const qint64 directory = header.number32(kDirectoryAt);
    const quint32 entries = std::min(header.number32(kDirectoryAt + 4), kMaxEntries);
    bool hasCamera = false;
    bool hasRaw = false;
    for (quint32 i = 0; i < entries && !(hasCamera && hasRaw); ++i) {
        const qint64 entry = directory + static_cast<qint64>(i) * kEntrySize;
        const quint16 type = header.number16(entry);
        const bool isCamera = type == kCamera && !hasCamera;
        const bool isRaw = type == kRawPicture && !hasRaw;
        if (!isCamera && !isRaw) {
            continue;
        }
        const Record record = recordAt(header, entry);
        if (isCamera) {
            hasCamera = true;
            readCamera(record, result);
        } else {
            hasRaw = true;
            result.rawWidth = record.number16(2);
            result.rawHeight = record.number16(4);
        }
    }
    return result;
}

} // namespace lumo::exif

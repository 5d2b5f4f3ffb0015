// SPDX-License-Identifier: Apache-2.0
#include "specificSensor/tiff_file.h"

#include <QtEndian>

#include <array>

namespace lumo {
namespace {

constexpr quint32 kHeaderBytes = 8;
constexpr quint32 kEntryBytes = 12;
constexpr quint32 kFieldBytes = 4; ///< of an entry, for its values or their offset
constexpr quint16 kShort = 3;
constexpr quint16 kLong = 4;
constexpr quint16 kIfd = 13;

/// Bytes of one value of a type; 0 for types that are not known.
quint64 unitBytes(quint16 type)
{
    // By type number: 1 BYTE to 12 DOUBLE (TIFF 6.0, section 2), 13 IFD.
    constexpr std::array<quint64, 14> kBytes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type < kBytes.size() ? kBytes.at(type) : 0;
}

bool isNumbers(quint16 type)
{
    return type == kShort || type == kLong || type == kIfd;
}

quint64 valueBytes(const TiffEntry& entry)
{
    return unitBytes(entry.type) * entry.count;
}

bool damaged(const QString& what, QString& error)
{
    error = QStringLiteral("truncated or damaged: ") + what;
    return false;
}

} // namespace

bool TiffFile::inside(quint64 at, quint64 size) const
{
    const auto end = static_cast<quint64>(m_bytes.size());
    return at <= end && size <= end - at; // at + size might wrap around
}

quint16 TiffFile::word(quint64 at) const
{
    const char* data = m_bytes.constData() + at;
    return m_bigEndian ? qFromBigEndian<quint16>(data) : qFromLittleEndian<quint16>(data);
}

quint32 TiffFile::longWord(quint64 at) const
{
    const char* data = m_bytes.constData() + at;
    return m_bigEndian ? qFromBigEndian<quint32>(data) : qFromLittleEndian<quint32>(data);
}

quint64 TiffFile::valueOffset(const TiffEntry& entry) const
{
    const quint64 field = quint64(entry.at) + kEntryBytes - kFieldBytes;
    return valueBytes(entry) > kFieldBytes ? longWord(field) : field;
}

bool TiffFile::readHeader(quint32& directory, QString& error)
{
    constexpr quint16 kMark = 42;
    constexpr quint16 kBigMark = 43; // 64-bit offsets
    m_bigEndian = m_bytes.startsWith("MM");
    if (!inside(0, kHeaderBytes) || (!m_bigEndian && !m_bytes.startsWith("II")) ||
        (word(2) != kMark && word(2) != kBigMark)) {
        error = QStringLiteral("not a TIFF file");
        return false;
    }
    if (word(2) == kBigMark) {
        error = QStringLiteral("a BigTIFF file; only files with 32-bit offsets can be cut");
        return false;
    }
    directory = longWord(4);
    m_used.push_back({0, kHeaderBytes, true});
    return true;
}

bool TiffFile::readDirectory(quint32 at, TiffDirectory& directory, QString& error)
{
    const quint64 first = quint64(at) + 2;
    if (at < kHeaderBytes || !inside(at, 2)) {
        return damaged(QStringLiteral("no directory at byte %1").arg(at), error);
    }
    const quint64 bytes = quint64(word(at)) * kEntryBytes;
    if (!inside(first, bytes + sizeof(quint32))) {
        return damaged(QStringLiteral("the directory at byte %1 has no end").arg(at), error);
    }
    m_used.push_back({at, first + bytes + sizeof(quint32), true});
    TiffDirectory result;
    for (quint64 place = first; place < first + bytes; place += kEntryBytes) {
        const quint16 tag = word(place);
        const TiffEntry entry{static_cast<quint32>(place), word(place + 2), longWord(place + 4)};
        const quint64 values = valueOffset(entry);
        if (!inside(values, valueBytes(entry))) {
            return damaged(
                QStringLiteral("the values of tag %1 lie outside the file").arg(tag), error);
        }
        if (!result.entries.emplace(tag, entry).second) {
            return damaged(QStringLiteral("tag %1 comes twice").arg(tag), error);
        }
        if (valueBytes(entry) > kFieldBytes) {
            m_used.push_back({values, values + valueBytes(entry), isNumbers(entry.type)});
        }
    }
    result.next = longWord(first + bytes);
    directory = result;
    return true;
}

std::vector<quint32> TiffFile::numbers(const TiffDirectory& directory, quint16 tag) const
{
    const auto found = directory.entries.find(tag);
    if (found == directory.entries.end()) {
        return {};
    }
    const TiffEntry& entry = found->second;
    if (!isNumbers(entry.type)) {
        return {};
    }
    std::vector<quint32> values;
    values.reserve(entry.count);
    const quint64 start = valueOffset(entry);
    for (quint64 i = 0; i < entry.count; ++i) {
        values.push_back(entry.type == kShort ? word(start + 2 * i) : longWord(start + 4 * i));
    }
    return values;
}

std::optional<quint32> TiffFile::number(const TiffDirectory& directory, quint16 tag) const
{
    const std::vector<quint32> values = numbers(directory, tag);
    return values.size() == 1 ? std::optional(values.front()) : std::nullopt;
}

void TiffFile::setNumbers(const TiffEntry& entry, const std::vector<quint32>& values)
{
    TiffEntry changed = entry;
    changed.count = static_cast<quint32>(values.size());
    const auto put = [this](quint64 at, auto value) {
        char* data = m_bytes.data() + at;
        m_bigEndian ? qToBigEndian(value, data) : qToLittleEndian(value, data);
    };
    put(quint64(entry.at) + 4, changed.count);
    // Fewer values may fit into the entry itself, where readers then expect them.
    const quint64 start = valueOffset(changed);
    for (quint64 i = 0; i < changed.count; ++i) {
        if (entry.type == kShort) {
            put(start + 2 * i, static_cast<quint16>(values[i]));
        } else {
            put(start + 4 * i, values[i]);
        }
    }
}

} // namespace lumo

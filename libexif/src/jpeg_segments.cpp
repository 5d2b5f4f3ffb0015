// SPDX-License-Identifier: Apache-2.0
#include "jpeg_segments.h"

#include <QIODevice>
#include <QtEndian>

namespace lumo::exif {
namespace {

constexpr unsigned char kMarker = 0xff;
constexpr unsigned char kStartOfScan = 0xda;
constexpr unsigned char kEndOfImage = 0xd9;

unsigned char readByte(QIODevice& file)
{
    char byte = 0;
    file.getChar(&byte);
    return static_cast<unsigned char>(byte);
}

} // namespace

/// Three numbers of the range mean other segments (table B.1).
bool JpegSegment::isFrameHeader() const
{
    return type >= 0xc0 && type <= 0xcf && type != 0xc4 && type != 0xc8 && type != 0xcc;
}

QByteArray JpegSegment::bytes() const
{
    QByteArray result(4, '\xff');
    result[1] = static_cast<char>(type);
    qToBigEndian(static_cast<quint16>(content.size() + 2), result.data() + 2);
    return result + content;
}

JpegSegments::JpegSegments(QIODevice& file)
    : m_file(file)
{
    m_damaged = !file.seek(0) || file.read(2) != QByteArray("\xff\xd8");
}

bool JpegSegments::next(JpegSegment& segment)
{
    // Real files have up to some hundred, most of them thermal data or extended XMP.
    constexpr int kMaxSegments = 4096;
    if (m_damaged || m_atPicture || ++m_count > kMaxSegments || readByte(m_file) != kMarker) {
        m_damaged = !m_atPicture;
        return false;
    }
    segment.type = readByte(m_file);
    while (segment.type == kMarker && !m_file.atEnd()) {
        segment.type = readByte(m_file);
    }
    m_atPicture = segment.type == kStartOfScan || segment.type == kEndOfImage;
    if (m_atPicture) {
        return false;
    }
    const QByteArray length = m_file.read(2);
    const int size = length.size() == 2 ? qFromBigEndian<quint16>(length.constData()) - 2 : -1;
    segment.content = size >= 0 ? m_file.read(size) : QByteArray();
    m_damaged = size < 0 || segment.content.size() != size;
    return !m_damaged;
}

} // namespace lumo::exif

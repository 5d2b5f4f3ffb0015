// SPDX-License-Identifier: Apache-2.0
#include "jpeg_frame.h"

#include <QIODevice>
#include <QtEndian>

namespace lumo::exif {
namespace {

constexpr unsigned char kMarker = 0xff;
constexpr unsigned char kStartOfScan = 0xda;
constexpr unsigned char kEndOfImage = 0xd9;

/// SOF0 to SOF15, of which three numbers mean other segments (ITU-T T.81, table B.1).
bool isFrameHeader(unsigned char type)
{
    return type >= 0xc0 && type <= 0xcf && type != 0xc4 && type != 0xc8 && type != 0xcc;
}

unsigned char readByte(QIODevice& file)
{
    char byte = 0;
    file.getChar(&byte);
    return static_cast<unsigned char>(byte);
}

} // namespace

int readJpegComponents(QIODevice& file)
{
    if (!file.seek(0) || file.read(2) != QByteArray("\xff\xd8")) {
        return 0;
    }
    while (readByte(file) == kMarker) {
        unsigned char type = readByte(file);
        while (type == kMarker && !file.atEnd()) {
            type = readByte(file);
        }
        if (type == kStartOfScan || type == kEndOfImage) {
            return 0;
        }
        const QByteArray lengthBytes = file.read(2);
        if (lengthBytes.size() != 2) {
            return 0;
        }
        const qint64 length = qFromBigEndian<quint16>(lengthBytes.constData());
        if (isFrameHeader(type)) {
            // precision (1 byte), height (2), width (2), number of components (1)
            const QByteArray frame = file.read(6);
            return frame.size() == 6 ? static_cast<unsigned char>(frame[5]) : 0;
        }
        if (length < 2 || !file.seek(file.pos() + length - 2)) {
            return 0;
        }
    }
    return 0;
}

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#include "serial_number.h"

#include <QBuffer>
#include <QtEndian>
#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

QByteArray word(quint32 number, bool bigEndian)
{
    QByteArray bytes(4, '\0');
    bigEndian ? qToBigEndian(number, bytes.data()) : qToLittleEndian(number, bytes.data());
    return bytes;
}

/// A file with a directory of one other entry and the serial number's.
QByteArray fileWith(const QByteArray& serial, bool bigEndian, quint32 size, quint32 count = 2)
{
    const auto w = [bigEndian](quint32 number) { return word(number, bigEndian); };
    const quint32 textOffset = 12 + 8 + 2 * 16;
    QByteArray value = w(textOffset);
    if (size <= 4) {
        value = serial.leftJustified(4, '\0');
    }
    return QByteArray(8, 'x') + (bigEndian ? "MMMM" : "IIII") + "CwaR" + w(12) + w(count) + w(0) +
           w(0x10c) + w(4) + w(4) + w(7320) + w(0x102) + w(1) + w(size) + value + serial;
}

QString serialOf(QByteArray content)
{
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    return readPhaseOneSerialNumber(buffer);
}

TEST(PhaseOneSerialNumber, IsReadInBothByteOrders)
{
    for (const bool bigEndian : {false, true}) {
        EXPECT_EQ(serialOf(fileWith("LD001055", bigEndian, 9) + '\0'), QStringLiteral("LD001055"));
        EXPECT_EQ(serialOf(fileWith("LD1", bigEndian, 4)), QStringLiteral("LD1"));
    }
}

TEST(PhaseOneSerialNumber, DamagedBlocksHaveNone)
{
    const QByteArray whole = fileWith("LD001055", false, 8);
    for (int length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(serialOf(whole.left(length)), QString()) << length;
    }
    EXPECT_EQ(serialOf(fileWith("LD001055", false, 0xffffffff)), QString());
    EXPECT_EQ(serialOf(fileWith("LD001055", false, 8, 0xffffffff)), QString());
}

} // namespace
} // namespace lumo::exif

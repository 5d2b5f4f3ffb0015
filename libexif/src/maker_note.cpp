// SPDX-License-Identifier: Apache-2.0
#include "maker_note.h"

#include "exif_text.h"

#include <QRegularExpression>
#include <QtEndian>

namespace lumo::exif {
namespace {

constexpr const char* kMakerNote = "Exif.Photo.MakerNote";

QByteArray bytesOf(const TagReader& tags, const char* key)
{
    const TagValue* value = tags.find(key);
    return value == nullptr ? QByteArray() : value->bytes;
}

/// Little-endian UTF-16 up to a NUL.
QString utf16(const QByteArray& bytes)
{
    QString text;
    for (int i = 0; i + 1 < bytes.size(); i += 2) {
        const QChar character(qFromLittleEndian<quint16>(bytes.constData() + i));
        if (character.isNull()) {
            break;
        }
        text += character;
    }
    return cleanedText(text);
}

/// Three families of trail cameras, each with the number at a place of its own.
QString ofReconyx(const QByteArray& note)
{
    constexpr int kLength = 15;
    struct Family
    {
        QByteArray mark;
        int at;
        bool isUtf16;
    };
    static const Family families[] = {
        {QByteArray("\x01\xf1", 2), 42, true},
        {QByteArray("RECONYXUF\0", 10), 0x4b, false},
        {QByteArray("RECONYXH2\0", 10), 0x7e, true}};
    for (const Family& family : families) {
        const int size = family.isUtf16 ? 2 * kLength : kLength;
        if (note.startsWith(family.mark) && note.size() >= family.at + size) {
            const QByteArray bytes = note.mid(family.at, size);
            return family.isUtf16 ? utf16(bytes) : cleanedText(decodedText(bytes));
        }
    }
    return {};
}

/// Notes that are no directory and start with the number, such as "KCGMM62500120".
QString ofKodak(const QByteArray& note)
{
    constexpr int kLength = 16;
    static const QRegularExpression form(QStringLiteral("^K[A-Z0-9]{3,5}[0-9]{6,8}$"));
    const QString text = cleanedText(decodedText(note.left(kLength)));
    return form.match(text).hasMatch() ? text : QString();
}

/// A directory kept as bytes, with values elsewhere in the maker note; positions count from
/// the TIFF header.
QString ofOlympusEquipment(const TagReader& tags, const QByteArray& note)
{
    constexpr int kEntrySize = 12;
    constexpr quint16 kSerialNumber = 0x0101;
    constexpr quint16 kText = 2;
    constexpr quint32 kMaxLength = 64;
    const QByteArray equipment = bytesOf(tags, "Exif.Olympus.Equipment");
    const double noteAt = tags.number("Exif.MakerNote.Offset").value_or(-1.0);
    const bool littleEndian = tags.text("Exif.MakerNote.ByteOrder") == QLatin1String("II");
    const auto get16 = [&](int at) {
        const char* bytes = equipment.constData() + at;
        return littleEndian ? qFromLittleEndian<quint16>(bytes) : qFromBigEndian<quint16>(bytes);
    };
    const auto get32 = [&](int at) {
        const char* bytes = equipment.constData() + at;
        return littleEndian ? qFromLittleEndian<quint32>(bytes) : qFromBigEndian<quint32>(bytes);
    };
    const int entries = equipment.size() < 2 ? 0 : get16(0);
    for (int i = 0; i < entries && 2 + (i + 1) * kEntrySize <= equipment.size(); ++i) {
        const int entry = 2 + i * kEntrySize;
        const quint32 length = get32(entry + 4);
        const double at = static_cast<double>(get32(entry + 8)) - noteAt;
        if (get16(entry) == kSerialNumber && get16(entry + 2) == kText && noteAt >= 0.0 &&
            length > 4 && length <= kMaxLength && at >= 0.0 &&
            at + static_cast<double>(length) <= static_cast<double>(note.size())) {
            return cleanedText(
                decodedText(note.mid(static_cast<int>(at), static_cast<int>(length))));
        }
    }
    return {};
}

} // namespace

QString findMakerNoteSerialNumber(const TagReader& tags)
{
    const QByteArray note = bytesOf(tags, kMakerNote);
    const QString make = tags.text("Exif.Image.Make");
    if (note.isEmpty()) {
        return {};
    }
    if (make.startsWith(QLatin1String("RECONYX"), Qt::CaseInsensitive)) {
        return ofReconyx(note);
    }
    if (make.contains(QLatin1String("Kodak"), Qt::CaseInsensitive)) {
        return ofKodak(note);
    }
    return ofOlympusEquipment(tags, note);
}

double findCanonFocalLength(const TagReader& tags)
{
    constexpr double kLongestMm = 5000.0;
    const TagValue* length = tags.find("Exif.Canon.FocalLength");
    const TagValue* lens = tags.find("Exif.CanonCs.Lens");
    if (length == nullptr || length->numbers.size() < 2) {
        return 0.0;
    }
    // Units per millimetre; 0 of old cameras is 1.
    const bool hasUnit = lens != nullptr && lens->numbers.size() == 3 && lens->numbers[2] > 0.0;
    const double focalLength = length->numbers[1] / (hasUnit ? lens->numbers[2] : 1.0);
    return focalLength > 0.0 && focalLength <= kLongestMm ? focalLength : 0.0;
}

} // namespace lumo::exif

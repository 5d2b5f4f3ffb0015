// SPDX-License-Identifier: Apache-2.0
#include "file_kind.h"

#include "tiff_bytes.h"

#include <QList>

#include <algorithm>
#include <array>

namespace lumo::exif {
namespace {

struct Mark
{
    int at;
    QByteArray bytes;
    const char* format;
};

bool has(const QByteArray& head, int at, const QByteArray& bytes)
{
    return head.mid(at, bytes.size()) == bytes;
}

/// Formats that exiv2 would read badly, or take for another one.
const char* refusedFormat(const QByteArray& head)
{
    static const std::array<Mark, 12> kMarks = {{
        {0, QByteArray("\0\0\0\x0cJXL \r\n\x87\n", 12), "JPEG XL, which is not read"},
        {0, QByteArray("\xff\x0a"), "JPEG XL, which is not read"},
        {0, QByteArray("FOVb"), "X3F, which is not read"},
        {0, QByteArray("\x1a\x45\xdf\xa3"), "a video (Matroska or WebM)"},
        {0, QByteArray("\x30\x26\xb2\x75\x8e\x66\xcf\x11"), "a video (ASF or WMV)"},
        {0, QByteArray("OggS"), "sound or a video (Ogg)"},
        {0, QByteArray("fLaC"), "sound (FLAC)"},
        {0, QByteArray("ID3"), "sound (MP3)"},
        {0, QByteArray("\0\0\x01\xba", 4), "a video (MPEG)"},
        {0, QByteArray("\0\0\x01\xb3", 4), "a video (MPEG)"},
        {0, QByteArray("%PDF"), "a PDF document"},
        {0, QByteArray("PK\x03\x04"), "an archive (ZIP)"},
    }};
    for (const Mark& mark : kMarks) {
        if (has(head, mark.at, mark.bytes)) {
            return mark.format;
        }
    }
    const bool isRiff = has(head, 0, "RIFF") || has(head, 0, "RIFX");
    if (isRiff && !has(head, 8, "WEBP")) {
        return has(head, 8, "WAVE") ? "sound (WAV)" : "a video (AVI or another RIFF file)";
    }
    return nullptr;
}

/// The major brand, then the compatible ones, of a "ftyp" box.
QList<QByteArray> brands(const QByteArray& head)
{
    QList<QByteArray> result = {head.mid(8, 4)};
    const int size = qFromBigEndian<qint32>(head.constData());
    for (int at = 16; at + 4 <= qMin(size, head.size()); at += 4) {
        result.append(head.mid(at, 4));
    }
    return result;
}

bool holdsAny(const QList<QByteArray>& brands, const QList<QByteArray>& wanted)
{
    return std::any_of(
        brands.begin(), brands.end(), [&](const QByteArray& one) { return wanted.contains(one); });
}

/// By the brands of ISO/IEC 23008-12 (HEIF), of the AVIF specification, and of CR3. Films
/// may name the brands of pictures as compatible, and pictures those of films: the major
/// brand decides where it is a known one.
FileKind bmffKind(const QByteArray& head, QString& reason)
{
    static const QList<QByteArray> kPictures = {"mif1", "mif2", "mif3", "heic", "heix",
                                                "heim", "heis", "heif", "avif", "avio",
                                                "miaf", "MA1A", "MA1B"};
    static const QList<QByteArray> kFilms = {"isom", "iso2", "iso3", "iso4", "iso5",
                                             "iso6", "avc1", "mp41", "mp42", "qt  ",
                                             "M4V ", "M4A ", "MSNV", "dash"};
    const QList<QByteArray> all = brands(head);
    if (all.first() == "crx ") {
        return FileKind::Cr3;
    }
    const bool isFilm = kFilms.contains(all.first()) || all.first().startsWith("3g");
    if (!isFilm && holdsAny(all, kPictures)) {
        return FileKind::Bmff;
    }
    reason = QStringLiteral("a video (QuickTime, MP4 or another film of this family)");
    return FileKind::Refused;
}

bool startsQuickTime(const QByteArray& head)
{
    for (const char* box : {"moov", "mdat", "wide", "free", "skip", "pnot", "udta", "uuid"}) {
        if (has(head, 4, box)) {
            return true;
        }
    }
    return false;
}

} // namespace

FileKind fileKind(const QByteArray& head, QString& reason)
{
    if (const char* format = refusedFormat(head)) {
        reason = QString::fromLatin1(format);
        return FileKind::Refused;
    }
    if (head.startsWith("\xff\xd8")) {
        return FileKind::Jpeg;
    }
    if (has(head, 4, "ftyp")) {
        return bmffKind(head, reason);
    }
    if (startsQuickTime(head)) {
        reason = QStringLiteral("a video (QuickTime)");
        return FileKind::Refused;
    }
    if (has(head, 6, "HEAPCCDR")) {
        return FileKind::Crw;
    }
    QByteArray bytes = head;
    const bool isTiff =
        TiffBytes(
            reinterpret_cast<unsigned char*>(bytes.data()), static_cast<std::size_t>(bytes.size()))
            .isTiff();
    return isTiff ? FileKind::Tiff : FileKind::Other;
}

} // namespace lumo::exif

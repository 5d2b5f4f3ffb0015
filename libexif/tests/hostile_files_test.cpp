// SPDX-License-Identifier: Apache-2.0
#include "image_files.h"
#include "tiff_limits.h"

#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

class HostileFiles : public ImageFiles
{
protected:
    /// What keeps the file from being read; "" if it is read.
    QString errorOf(const QByteArray& content)
    {
        ExifInfo exif;
        QString error;
        return readExif(write(content), exif, m_notes, error) ? QString() : error;
    }

    QStringList m_notes;
};

QByteArray bigEndian32(qsizetype number)
{
    return bigEndian16(static_cast<int>(number >> 16)) + bigEndian16(static_cast<int>(number));
}

QByteArray box(const QByteArray& type, const QByteArray& content)
{
    return bigEndian32(content.size() + 8) + type + content;
}

QByteArray fileType(const QByteArray& brands)
{
    return box("ftyp", brands.left(4) + QByteArray(4, '\0') + brands);
}

const QByteArray kCanonUuid = QByteArray::fromHex("85c0b687820f11e08111f4ce462b6a48");

QByteArray cr3(const QByteArray& metadata)
{
    return fileType("crx ") + box("moov", box("uuid", kCanonUuid + metadata));
}

/// A CIFF directory: what its entries refer to, the entries (tag, size, position), and
/// the position of their count.
QByteArray ciffDirectory(const QByteArray& inside, int entries)
{
    const auto size = static_cast<quint32>(inside.size());
    QByteArray list = littleEndian(static_cast<quint32>(entries), 2);
    for (int i = 0; i < entries; ++i) {
        list += littleEndian(0x300a, 2) + littleEndian(size, 4) + littleEndian(0, 4);
    }
    return inside + list + littleEndian(size, 4);
}

QByteArray nested(int depth, const QByteArray& innermost, QByteArray (*wrap)(const QByteArray&))
{
    QByteArray content = innermost;
    for (int i = 0; i < depth; ++i) {
        content = wrap(content);
    }
    return content;
}

TEST_F(HostileFiles, AreRefusedWithTheReason)
{
    const auto inMovie = [](const QByteArray& inside) { return box("moov", inside); };
    const auto inLongBox = [](const QByteArray& inside) {
        return bigEndian32(1) + "moov" + bigEndian32(0) + bigEndian32(inside.size() + 16) + inside;
    };
    const auto inDirectory = [](const QByteArray& inside) { return ciffDirectory(inside, 60); };
    const QByteArray ciffHead = "II" + littleEndian(26, 4) + "HEAPCCDR" + QByteArray(12, '\0');
    const QByteArray ciff = ciffDirectory(QByteArray(4, '\0'), 0);
    const QByteArray tiffBox = box("CMT1", tiff({tiffText(272, "Model of a camera")}));
    const QByteArray overlapping = littleEndian(256, 2) + QByteArray(12 * 256, '\1');
    const std::pair<QByteArray, const char*> cases[] = {
        {fileType("crx ") + nested(20000, {}, inMovie), "nested deeper than 8"},
        {fileType("heic") + nested(10, {}, inLongBox), "nested deeper than 8"},
        {fileType("heic") + box("free", {}).repeated(20001), "more than 20000 boxes"},
        {cr3(tiffBox.repeated(17)), "more than 16 boxes of metadata"},
        {ciffHead + nested(7, ciff, inDirectory), "directories list more than 4096 entries"},
        {ciffHead + nested(10, ciff, [](const QByteArray& in) { return ciffDirectory(in, 1); }),
         "directories are nested deeper than 8"},
        {QByteArray("\x89PNG\r\n\x1a\n") + QByteArray("II*\0\x08\0\0\0\xff\0", 10).repeated(40000),
         "over a million entries"},
        {"\xff\xd8" + QByteArray("\xff\xe0\0\2", 4).repeated(5000) + jpeg(kCamera).mid(2),
         "truncated or damaged"},
        {fileType("isom") + box("moov", {}), "a video (QuickTime, MP4"},
        {fileType("qt  heic") + box("moov", {}), "a video (QuickTime, MP4"},
        {box("moov", QByteArray(100, '\0')), "a video (QuickTime)"},
        {"RIFF" + littleEndian(100, 4) + "WAVEfmt " + QByteArray(100, '\0'), "sound (WAV)"},
        {"RIFF" + littleEndian(100, 4) + "AVI LIST" + QByteArray(100, '\0'), "a video (AVI"},
        {QByteArray("\x1a\x45\xdf\xa3") + QByteArray(100, '\0'), "a video (Matroska"},
        {QByteArray("\0\0\0\x0cJXL \r\n\x87\n", 12) + fileType("jxl "),
         "JPEG XL, which is not read"},
        {"FOVb" + QByteArray(100, '\0'), "X3F, which is not read"},
        {"GIF89a" + QByteArray(100, '\0'), "holds no EXIF data: GIF files have none"},
    };
    for (const auto& [content, expected] : cases) {
        const QString error = errorOf(content);
        EXPECT_TRUE(error.contains(QLatin1String(expected)))
            << expected << ": " << qPrintable(error);
    }
}

/// 256 entries of 100 KiB each, all of the same bytes: 25 MiB out of a file of 104 KiB.
TEST_F(HostileFiles, EntriesOfTheSameBytesAreReadUpToALimit)
{
    constexpr quint32 kEach = 100 * 1024;
    const auto shared = [](quint32 directory) {
        QByteArray entries = littleEndian(256, 2);
        for (quint32 i = 0; i < 256; ++i) {
            entries += littleEndian(40000 + i, 2) + littleEndian(7, 2) + littleEndian(kEach, 4) +
                       littleEndian(directory, 4);
        }
        return entries + littleEndian(0, 4);
    };
    const QByteArray makerNote = QByteArray("OLYMP\0\1\0", 8) + shared(64);
    const QByteArray contents[] = {
        QByteArray("II*\0\x08\0\0\0", 8) + shared(64) + QByteArray(kEach, '\0'),
        tiff(
            {tiffText(272, "Model"),
             {0x8769, 4, {}, {{0x927c, 7, makerNote + QByteArray(kEach, '\0')}}}})};
    for (QByteArray content : contents) {
        const auto listed = [&content] {
            const QByteArray large = littleEndian(7, 2) + littleEndian(kEach, 4);
            return static_cast<quint32>(content.count(large)) * kEach;
        };
        ASSERT_GE(listed(), 25U << 20);
        EXPECT_TRUE(limitTiff(
            {reinterpret_cast<unsigned char*>(content.data()),
             static_cast<std::size_t>(content.size())}));
        EXPECT_GT(listed(), 7U << 20);
        EXPECT_LE(listed(), 8U << 20);
    }
}

TEST_F(HostileFiles, TagsBeforeADamageAreKeptWithANote)
{
    const QByteArray tags = tiff({tiffText(271, "Maker"), tiffText(272, "Model of a camera")});
    const QByteArray jpegFile = jpeg(kCamera);
    const QByteArray cases[] = {
        cr3(box("CMT1", tags) + QByteArray("\0\0\xff\xffJUNKjunkjunk", 16)),
        jpegFile.left(jpegFile.size() - 20),
    };
    for (const QByteArray& content : cases) {
        EXPECT_EQ(errorOf(content), QString());
        ASSERT_EQ(m_notes.size(), 1);
        EXPECT_TRUE(
            m_notes.first().startsWith(QLatin1String("read in part: truncated or damaged")));
    }
    EXPECT_EQ(errorOf(cr3(box("CMT1", tags))), QString());
    EXPECT_EQ(m_notes, QStringList());
}

} // namespace
} // namespace lumo::exif

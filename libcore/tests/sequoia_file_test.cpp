// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/specificSensor/sequoia_file.h"
#include "specificSensor/tiff_rows.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace lumo {
namespace {

constexpr quint32 kHeight = 970;
constexpr quint32 kWidth = 3;
constexpr RowRange kPicture = {8, 960};

QByteArray number(quint32 value, int bytes, bool bigEndian)
{
    QByteArray result;
    for (int i = 0; i < bytes; ++i) {
        const int shift = 8 * (bigEndian ? bytes - 1 - i : i);
        result.append(static_cast<char>(value >> shift));
    }
    return result;
}

quint32 numberAt(const QByteArray& data, quint32 at, int bytes)
{
    quint32 value = 0;
    for (int i = 0; i < bytes; ++i) {
        const int place = data[0] == 'M' ? i : bytes - 1 - i;
        value = value << 8 | static_cast<quint8>(data[static_cast<int>(at) + place]);
    }
    return value;
}

struct Layout
{
    const char* name = "one strip";
    bool bigEndian = false;
    quint32 bits = 16;
    quint32 samples = 1;
    bool separate = false; ///< a plane a sample
    quint32 rowsPerStrip = kHeight;
    bool backwards = false; ///< the last strip stands first
    int numberType = 4;     ///< of the strip tags: 3 uint16, 4 uint32

    [[nodiscard]] quint32 planes() const { return separate ? samples : 1; }
    [[nodiscard]] quint32 rowBytes() const { return kWidth * bits / 8 * (separate ? 1 : samples); }
};

using Numbers = std::vector<quint32>;

/// The bytes of a row, which no other row of a plane has.
QByteArray rowOf(const Layout& layout, quint32 plane, quint32 row)
{
    const auto size = static_cast<int>(layout.rowBytes());
    return number(row * 8 + plane, 3, false).repeated(size / 3 + 1).left(size);
}

/// Appends a directory of (tag, type, numbers), whose values stand before it.
/// \returns where it stands
quint32 appendDirectory(
    QByteArray& file, const std::vector<std::tuple<quint32, int, Numbers>>& entries, bool big)
{
    QByteArray directory = number(static_cast<quint32>(entries.size()), 2, big);
    for (const auto& [tag, type, values] : entries) {
        const int unit = type == 3 ? 2 : type == 4 ? 4 : 1;
        QByteArray bytes;
        for (const quint32 value : values) {
            bytes += number(value, unit, big);
        }
        directory += number(tag, 2, big) + number(static_cast<quint32>(type), 2, big) +
                     number(static_cast<quint32>(values.size()), 4, big);
        if (bytes.size() > 4) {
            directory += number(static_cast<quint32>(file.size()), 4, big);
            file += bytes;
        } else {
            directory += bytes.leftJustified(4, '\0');
        }
    }
    const auto at = static_cast<quint32>(file.size());
    file += directory + number(0, 4, big);
    return at;
}

QByteArray tiff(const Layout& layout)
{
    const bool big = layout.bigEndian;
    const quint32 strips = (kHeight + layout.rowsPerStrip - 1) / layout.rowsPerStrip;
    QByteArray file = (big ? "MM" : "II") + number(42, 2, big) + number(0, 4, big);
    Numbers offsets(strips * layout.planes());
    Numbers counts(offsets.size());
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const std::size_t strip = layout.backwards ? offsets.size() - 1 - i : i;
        const quint32 first = static_cast<quint32>(strip) % strips * layout.rowsPerStrip;
        offsets[strip] = static_cast<quint32>(file.size());
        for (quint32 row = first; row < std::min(first + layout.rowsPerStrip, kHeight); ++row) {
            file += rowOf(layout, static_cast<quint32>(strip) / strips, row);
        }
        counts[strip] = static_cast<quint32>(file.size()) - offsets[strip];
        file += "gap!";
    }
    const quint32 exif = appendDirectory(
        file, {{0x927c, 7, {'n', 'o', 't', 'e', '!'}}, {0xa003, 3, {kHeight}}}, big);
    const quint32 picture = appendDirectory(
        file,
        {{0x100, 3, {kWidth}},
         {0x101, 3, {kHeight}},
         {0x102, 3, Numbers(layout.samples, layout.bits)},
         {0x103, 3, {1}},
         {0x10f, 2, {'P', 'a', 'r', 'r', 'o', 't', 0}},
         {0x111, layout.numberType, offsets},
         {0x115, 3, {layout.samples}},
         {0x116, 3, {layout.rowsPerStrip}},
         {0x117, layout.numberType, counts},
         {0x11c, 3, {layout.separate ? 2u : 1u}},
         {0x8769, 4, {exif}}},
        big);
    return file.replace(4, 4, number(picture, 4, big));
}

/// Where the entry of a tag stands in the first directory.
quint32 entryAt(const QByteArray& file, quint32 tag)
{
    quint32 at = numberAt(file, 4, 4) + 2;
    while (numberAt(file, at, 2) != tag) {
        at += 12;
    }
    return at;
}

/// The values of a directory's entries.
std::map<quint32, Numbers> directoryAt(const QByteArray& file, quint32 at)
{
    std::map<quint32, Numbers> result;
    const quint32 count = numberAt(file, at, 2);
    for (quint32 entry = at + 2; entry < at + 2 + 12 * count; entry += 12) {
        const quint32 type = numberAt(file, entry + 2, 2);
        const int unit = type == 3 ? 2 : type == 4 ? 4 : 1;
        const quint32 values = numberAt(file, entry + 4, 4);
        const quint32 from =
            values * static_cast<quint32>(unit) > 4 ? numberAt(file, entry + 8, 4) : entry + 8;
        for (quint32 i = 0; i < values; ++i) {
            result[numberAt(file, entry, 2)].push_back(
                numberAt(file, from + i * static_cast<quint32>(unit), unit));
        }
    }
    return result;
}

QByteArray pixels(const QByteArray& file, const std::map<quint32, Numbers>& tags)
{
    QByteArray result;
    for (std::size_t strip = 0; strip < tags.at(0x111).size(); ++strip) {
        result += file.mid(
            static_cast<int>(tags.at(0x111)[strip]), static_cast<int>(tags.at(0x117)[strip]));
    }
    return result;
}

TEST(CutTiffRows, RowsAreKeptBitForBitWithAllElse)
{
    const Layout layouts[] = {
        {},
        {.name = "big-endian", .bigEndian = true},
        {.name = "8 bits", .bits = 8, .samples = 2},
        {.name = "strips of one row", .bigEndian = true, .rowsPerStrip = 1, .numberType = 3},
        {.name = "strips cut across", .samples = 3, .rowsPerStrip = 37},
        {.name = "one strip left of two", .bits = 32, .rowsPerStrip = 965},
        {.name = "two short strips left of three", .bits = 8, .rowsPerStrip = 480, .numberType = 3},
        {.name = "backwards", .rowsPerStrip = 64, .backwards = true},
        {.name = "planes", .samples = 3, .separate = true, .rowsPerStrip = 100},
    };
    for (const Layout& layout : layouts) {
        SCOPED_TRACE(layout.name);
        const QByteArray original = tiff(layout);
        QByteArray cut = original;
        QString error;
        ASSERT_TRUE(cutTiffRows(cut, kHeight, kPicture, error)) << qPrintable(error);
        ASSERT_EQ(cut.size(), original.size());

        QByteArray expected;
        for (quint32 plane = 0; plane < layout.planes(); ++plane) {
            for (quint32 row = 8; row < 968; ++row) {
                expected += rowOf(layout, plane, row);
            }
        }
        const std::map<quint32, Numbers> tags = directoryAt(cut, numberAt(cut, 4, 4));
        EXPECT_TRUE(pixels(cut, tags) == expected);

        std::map<quint32, Numbers> kept = directoryAt(original, numberAt(original, 4, 4));
        EXPECT_EQ(
            directoryAt(cut, kept[0x8769][0]),
            (std::map<quint32, Numbers>{{0x927c, {'n', 'o', 't', 'e', '!'}}, {0xa003, {960}}}));
        kept[0x101] = {960};
        kept[0x116] = {std::min(layout.rowsPerStrip, 960u)};
        kept[0x111] = tags.at(0x111);
        kept[0x117] = tags.at(0x117);
        EXPECT_EQ(tags, kept);
    }
}

TEST(CutTiffRows, RefusesWhatItCannotCutAndLeavesItAlone)
{
    const auto set = [](quint32 tag, quint32 field, quint32 value, int bytes) {
        return [=](QByteArray& file) {
            const auto at = static_cast<int>(entryAt(file, tag) + field);
            file.replace(at, bytes, number(value, bytes, false));
        };
    };
    const struct
    {
        std::function<void(QByteArray&)> change;
        const char* error;
    } cases[] = {
        {[](QByteArray& file) { file[0] = 'X'; }, "not a TIFF file"},
        {[](QByteArray& file) { file[2] = 43; },
         "a BigTIFF file; only files with 32-bit offsets can be cut"},
        {[](QByteArray& file) { file.replace(4, 4, number(4, 4, false)); },
         "truncated or damaged: no directory at byte 4"},
        {set(0x10f, 0, 0x100, 2), "truncated or damaged: tag 256 comes twice"},
        {set(0x10f, 4, 1u << 31, 4),
         "truncated or damaged: the values of tag 271 lie outside the file"},
        {set(0x101, 8, 960, 2), "has 960 rows instead of 970"},
        {set(0x103, 8, 5, 2), "compressed (scheme 5); only uncompressed pixels can be cut"},
        {set(0x10f, 0, 0x142, 2), "in tiles; only strips can be cut"},
        {set(0x10f, 0, 0x14a, 2), "contains more than one picture"},
        {set(0x8769, 12, 8, 4), "contains more than one picture"},
        {set(0x10f, 0, 0xc68d, 2), "contains tag 50829, which refers to rows of the uncut picture"},
        {set(0x102, 8, 0, 2), "damaged: width, samples or bits of a pixel are missing or wrong"},
        {set(0x116, 8, 0, 2), "damaged: its strips do not make up 970 rows"},
        {set(0x116, 8, 300, 2), "damaged: its strips do not make up 970 rows"},
        {set(0x117, 8, 5819, 4), "truncated or damaged: strip 1 has less than 5820 bytes"},
        {set(0x111, 8, 0xffffffff, 4), "truncated or damaged: strip 1 has less than 5820 bytes"},
        {[&set](QByteArray& file) {
             file = tiff({.rowsPerStrip = 500});
             set(0x117, 8, numberAt(file, 4, 4), 4)(file); // the directory itself
         },
         "damaged: several parts overlap at byte 5894"},
        {set(0x111, 8, 7, 4), "damaged: several parts overlap at byte 7"},
        {set(0x111, 8, 40, 4), "damaged: several parts overlap at byte 5832"},
    };
    for (const auto& [change, reason] : cases) {
        QByteArray file = tiff({});
        change(file);
        const QByteArray before = file;
        QString error;
        EXPECT_FALSE(cutTiffRows(file, kHeight, kPicture, error)) << reason;
        EXPECT_EQ(error, reason);
        EXPECT_EQ(file, before);
    }
    // The directory stands at the end, so no beginning is a whole file.
    const QByteArray whole = tiff({.bits = 8});
    for (int size = 0; size < whole.size(); ++size) {
        QByteArray file = whole.left(size);
        QString error;
        EXPECT_FALSE(cutTiffRows(file, kHeight, kPicture, error)) << size;
    }
}

TEST(SequoiaFile, ACopyAppearsWholeAndNeverOverAnotherFile)
{
    const QTemporaryDir folder;
    const QString source = folder.filePath("a.tif");
    const QString target = folder.filePath("b.tif");
    const auto content = [](const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        return file.readAll();
    };
    const QByteArray original = tiff({});
    {
        QFile file(source);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(original) == original.size());
    }
    QString error;
    ASSERT_TRUE(sequoia::writeWithoutDebugLines(source, target, error)) << qPrintable(error);
    QByteArray cut = original;
    ASSERT_TRUE(cutTiffRows(cut, kHeight, kPicture, error));
    EXPECT_EQ(content(target), cut);

    const std::tuple<QString, QString, QString> cases[] = {
        {source, source, source + ": already exists"},
        {source, target, target + ": already exists"},
        {target, folder.filePath("c.tif"), "has 960 rows instead of 970"},
        {folder.filePath("none"), folder.filePath("c.tif"), "No such file or directory"},
        {folder.path(), folder.filePath("c.tif"), "not a regular file"},
    };
    for (const auto& [from, to, reason] : cases) {
        error.clear();
        EXPECT_FALSE(sequoia::writeWithoutDebugLines(from, to, error));
        EXPECT_EQ(error, reason);
    }
    EXPECT_FALSE(sequoia::writeWithoutDebugLines(source, folder.filePath("no/c.tif"), error));
    EXPECT_TRUE(error.startsWith(folder.filePath("no/c.tif: "))) << qPrintable(error);
    EXPECT_EQ(content(source), original);
    EXPECT_EQ(content(target), cut);
    EXPECT_EQ(
        QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), (QStringList{"a.tif", "b.tif"}));
}

} // namespace
} // namespace lumo

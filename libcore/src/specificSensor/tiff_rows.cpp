// SPDX-License-Identifier: Apache-2.0
#include "specificSensor/tiff_rows.h"

#include "specificSensor/tiff_file.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

namespace lumo {
namespace {

enum Tag : quint16 {
    ImageWidth = 0x100,
    ImageLength = 0x101,
    BitsPerSample = 0x102,
    Compression = 0x103,
    StripOffsets = 0x111,
    SamplesPerPixel = 0x115,
    RowsPerStrip = 0x116,
    StripByteCounts = 0x117,
    PlanarConfiguration = 0x11c,
    TileWidth = 0x142,
    SubIfds = 0x14a,
    ExifIfd = 0x8769,
    GpsIfd = 0x8825,
    PixelYDimension = 0xa003,
    InteroperabilityIfd = 0xa005,
    DefaultCropOrigin = 0xc61f,
    DefaultCropSize = 0xc620,
    ActiveArea = 0xc68d,
    MaskedAreas = 0xc68e,
};

/// Where the rows of a picture are.
struct Strips
{
    quint32 height = 0;
    quint64 rowBytes = 0;     ///< of one plane
    quint32 rowsPerStrip = 0; ///< at most the height
    quint32 planes = 1;       ///< more than one where each sample has its own
    std::vector<quint32> offsets;

    [[nodiscard]] static quint32 perPlane(quint32 rows, quint32 rowsPerStrip)
    {
        return rows / rowsPerStrip + (rows % rowsPerStrip != 0 ? 1 : 0);
    }
    [[nodiscard]] quint64 offsetOfRow(quint32 plane, quint32 row) const
    {
        const quint32 strip = plane * perPlane(height, rowsPerStrip) + row / rowsPerStrip;
        return offsets[strip] + (row % rowsPerStrip) * rowBytes;
    }
    /// Bytes of each strip of one plane of so many rows.
    [[nodiscard]] std::vector<quint64> sizes(quint32 rows) const
    {
        std::vector<quint64> result(perPlane(rows, rowsPerStrip), rowsPerStrip * rowBytes);
        if (rows % rowsPerStrip != 0) {
            result.back() = rows % rowsPerStrip * rowBytes;
        }
        return result;
    }
};

bool refuse(const QString& reason, QString& error)
{
    error = reason;
    return false;
}

bool checkKind(const TiffFile& tiff, const TiffDirectory& picture, QString& error)
{
    constexpr quint32 kUncompressed = 1;
    const quint32 compression = tiff.number(picture, Compression).value_or(kUncompressed);
    if (compression != kUncompressed) {
        return refuse(
            QStringLiteral("compressed (scheme %1); only uncompressed pixels can be cut")
                .arg(compression),
            error);
    }
    if (picture.contains(TileWidth)) {
        return refuse(QStringLiteral("in tiles; only strips can be cut"), error);
    }
    if (picture.next != 0 || picture.contains(SubIfds)) {
        return refuse(QStringLiteral("contains more than one picture"), error);
    }
    // Tags of DNG that count rows of the whole picture; they would be wrong afterwards.
    for (const quint16 tag : {DefaultCropOrigin, DefaultCropSize, ActiveArea, MaskedAreas}) {
        if (picture.contains(tag)) {
            return refuse(
                QStringLiteral("contains tag %1, which refers to rows of the uncut picture")
                    .arg(tag),
                error);
        }
    }
    return true;
}

/// Fills the number of planes and the bytes of a row in each.
bool readRowSize(const TiffFile& tiff, const TiffDirectory& picture, Strips& strips, QString& error)
{
    constexpr quint32 kMaxBits = 64;
    constexpr quint32 kSeparatePlanes = 2;
    const quint32 width = tiff.number(picture, ImageWidth).value_or(0);
    const quint32 samples = tiff.number(picture, SamplesPerPixel).value_or(1);
    std::vector<quint32> bits = tiff.numbers(picture, BitsPerSample);
    // Defaults of TIFF 6.0, section 8: one sample of one bit.
    if (bits.empty() && !picture.contains(BitsPerSample)) {
        bits.assign(1, 1);
    }
    const bool rightBits =
        std::all_of(bits.begin(), bits.end(), [](quint32 n) { return n >= 1 && n <= kMaxBits; });
    if (width == 0 || samples == 0 || bits.size() != samples || !rightBits) {
        return refuse(
            QStringLiteral("damaged: width, samples or bits of a pixel are missing or wrong"),
            error);
    }
    const bool separate = tiff.number(picture, PlanarConfiguration).value_or(1) == kSeparatePlanes;
    if (separate &&
        std::any_of(bits.begin(), bits.end(), [&](quint32 n) { return n != bits[0]; })) {
        return refuse(QStringLiteral("planes of different sample sizes cannot be cut"), error);
    }
    strips.planes = separate ? samples : 1;
    const quint64 bitsOfPixel =
        separate ? bits[0] : std::accumulate(bits.begin(), bits.end(), quint64(0));
    strips.rowBytes = (width * bitsOfPixel + 7) / 8; // each row begins at a byte
    return true;
}

bool readStrips(const TiffFile& tiff, const TiffDirectory& picture, Strips& strips, QString& error)
{
    constexpr quint32 kAll = std::numeric_limits<quint32>::max();
    if (!readRowSize(tiff, picture, strips, error)) {
        return false;
    }
    strips.rowsPerStrip =
        std::min(tiff.number(picture, RowsPerStrip).value_or(kAll), strips.height);
    strips.offsets = tiff.numbers(picture, StripOffsets);
    const std::vector<quint32> counts = tiff.numbers(picture, StripByteCounts);
    if (strips.rowsPerStrip == 0 || counts.size() != strips.offsets.size() ||
        quint64(strips.planes) * Strips::perPlane(strips.height, strips.rowsPerStrip) !=
            counts.size()) {
        return refuse(
            QStringLiteral("damaged: its strips do not make up %1 rows").arg(strips.height), error);
    }
    const std::vector<quint64> sizes = strips.sizes(strips.height);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const quint64 size = sizes[i % sizes.size()];
        if (counts[i] < size ||
            strips.offsets[i] + size > static_cast<quint64>(tiff.bytes().size())) {
            return refuse(
                QStringLiteral("truncated or damaged: strip %1 has less than %2 bytes")
                    .arg(i + 1)
                    .arg(size),
                error);
        }
    }
    return true;
}

/// Whether what will be written, pixels and numbers, shares no bytes with other
/// pixels or with what is to be kept.
bool nothingOverlaps(const TiffFile& tiff, const Strips& strips, QString& error)
{
    std::vector<TiffRange> ranges = tiff.used();
    const std::vector<quint64> sizes = strips.sizes(strips.height);
    for (std::size_t i = 0; i < strips.offsets.size(); ++i) {
        const quint64 begin = strips.offsets[i];
        ranges.push_back({begin, begin + sizes[i % sizes.size()], true});
    }
    std::sort(ranges.begin(), ranges.end(), [](const TiffRange& a, const TiffRange& b) {
        return a.begin < b.begin;
    });
    // Ranges that stay unchanged may share bytes; a range that is written may not.
    quint64 exclusiveEnd = 0;
    quint64 end = 0;
    for (const TiffRange& range : ranges) {
        if (range.begin < (range.exclusive ? end : exclusiveEnd)) {
            return refuse(
                QStringLiteral("damaged: several parts overlap at byte %1").arg(range.begin),
                error);
        }
        end = std::max(end, range.end);
        exclusiveEnd = range.exclusive ? std::max(exclusiveEnd, range.end) : exclusiveEnd;
    }
    return true;
}

/// Reads the directories below `directory`, of EXIF and position.
/// \param[out] all  they are appended
bool readInnerDirectories(
    TiffFile& tiff, const TiffDirectory& directory, int depth, std::vector<TiffDirectory>& all,
    QString& error)
{
    constexpr int kMaxDepth = 3; // EXIF, interoperability, and one to spare
    for (const quint16 tag : {ExifIfd, GpsIfd, InteroperabilityIfd}) {
        const auto at = tiff.number(directory, tag);
        if (!at) {
            continue;
        }
        if (depth == kMaxDepth) {
            return refuse(QStringLiteral("damaged: directories inside each other"), error);
        }
        TiffDirectory inner;
        if (!tiff.readDirectory(*at, inner, error) ||
            !readInnerDirectories(tiff, inner, depth + 1, all, error)) {
            return false;
        }
        all.push_back(inner);
    }
    return true;
}

void moveRows(QByteArray& bytes, const Strips& strips, RowRange rows)
{
    char* data = bytes.data();
    for (quint32 plane = 0; plane < strips.planes; ++plane) {
        for (quint32 row = 0; row < strips.height; ++row) {
            char* place = data + strips.offsetOfRow(plane, row);
            if (row < rows.count) {
                const char* from = data + strips.offsetOfRow(plane, rows.first + row);
                // Rows only move up, so this row's source is not overwritten yet.
                std::memmove(place, from, strips.rowBytes);
            } else {
                std::memset(place, 0, strips.rowBytes);
            }
        }
    }
}

void setStripTags(TiffFile& tiff, const TiffDirectory& picture, const Strips& strips, quint32 rows)
{
    const std::vector<quint64> sizes = strips.sizes(rows);
    const quint32 stride = Strips::perPlane(strips.height, strips.rowsPerStrip);
    std::vector<quint32> offsets;
    std::vector<quint32> counts;
    for (quint32 plane = 0; plane < strips.planes; ++plane) {
        const auto first = strips.offsets.begin() + std::ptrdiff_t(plane) * stride;
        offsets.insert(offsets.end(), first, first + static_cast<std::ptrdiff_t>(sizes.size()));
        counts.insert(counts.end(), sizes.begin(), sizes.end());
    }
    tiff.setNumbers(picture.entries.at(StripOffsets), offsets);
    tiff.setNumbers(picture.entries.at(StripByteCounts), counts);
    tiff.setNumbers(picture.entries.at(ImageLength), {rows});

    if (tiff.number(picture, RowsPerStrip).value_or(0) > rows) {
        tiff.setNumbers(picture.entries.at(RowsPerStrip), {rows});
    }
}

} // namespace

bool cutTiffRows(QByteArray& tiff, quint32 height, RowRange rows, QString& error)
{
    TiffFile file(tiff);
    quint32 first = 0;
    TiffDirectory picture;
    std::vector<TiffDirectory> inner;
    if (!file.readHeader(first, error) || !file.readDirectory(first, picture, error)) {
        return false;
    }
    Strips strips;
    strips.height = file.number(picture, ImageLength).value_or(0);
    if (strips.height != height) {
        return refuse(
            QStringLiteral("has %1 rows instead of %2").arg(strips.height).arg(height), error);
    }
    if (!checkKind(file, picture, error) || !readInnerDirectories(file, picture, 0, inner, error) ||
        !readStrips(file, picture, strips, error) || !nothingOverlaps(file, strips, error)) {
        return false;
    }
    moveRows(file.bytes(), strips, rows);
    setStripTags(file, picture, strips, rows.count);
    for (const TiffDirectory& directory : inner) {
        if (file.number(directory, PixelYDimension) == height) {
            file.setNumbers(directory.entries.at(PixelYDimension), {rows.count});
        }
    }
    tiff = file.bytes();
    return true;
}

} // namespace lumo

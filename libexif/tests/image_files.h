// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/read_exif.h"

#include <QFile>
#include <QTemporaryDir>
#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Image files without pixels, made of the tags that a test is about.
namespace lumo::exif {

struct Tag
{
    const char* key;
    Exiv2::TypeId type;
    std::string value; ///< as exiv2 reads it; rationals "a/b"
};
using Tags = std::vector<Tag>;

inline const Tags kCamera = {
    {"Exif.Image.Make", Exiv2::asciiString, "Maker"},
    {"Exif.Image.Model", Exiv2::asciiString, "Model"}};

inline Tags operator+(Tags a, const Tags& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline Exiv2::ExifData exifData(const Tags& tags)
{
    Exiv2::ExifData data;
    for (const Tag& tag : tags) {
        const auto value = Exiv2::Value::create(tag.type);
        if (auto* number = dynamic_cast<Exiv2::DoubleValue*>(value.get())) {
            number->value_.push_back(std::stod(tag.value)); // "nan" and "inf" too
        } else {
            value->read(tag.value);
        }
        data.add(Exiv2::ExifKey(tag.key), value.get());
    }
    return data;
}

inline QByteArray bigEndian16(int number)
{
    return QByteArray().append(static_cast<char>(number >> 8)).append(static_cast<char>(number));
}

inline QByteArray segment(char type, const QByteArray& content)
{
    return QByteArray("\xff").append(type) + bigEndian16(content.size() + 2) + content;
}

inline QByteArray jpeg(
    const Tags& tags, const QByteArray& xmp = {}, int width = 40, int height = 30,
    int components = 3)
{
    QByteArray file("\xff\xd8");
    if (!tags.empty()) {
        Exiv2::Blob blob;
        Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, exifData(tags));
        file += segment(
            '\xe1', QByteArray("Exif\0\0", 6) + QByteArray(
                                                    reinterpret_cast<const char*>(blob.data()),
                                                    static_cast<int>(blob.size())));
    }
    if (!xmp.isEmpty()) {
        file += segment('\xe1', QByteArray("http://ns.adobe.com/xap/1.0/\0", 29) + xmp);
    }
    const QByteArray perComponent = QByteArray("\1\x11\0", 3).repeated(components);
    file += segment(
        '\xc0', QByteArray("\x08") + bigEndian16(height) + bigEndian16(width) +
                    static_cast<char>(components) + perComponent);
    return file + "\xff\xd9";
}

inline QByteArray littleEndian(quint32 number, int bytes)
{
    QByteArray result;
    for (int i = 0; i < bytes; ++i) {
        result.append(static_cast<char>(number >> (8 * i)));
    }
    return result;
}

/// An entry of a TIFF directory.
struct TiffEntry
{
    quint32 tag;
    quint32 type; ///< 1 bytes, 2 text, 3 uint16, 4 uint32
    QByteArray value;
    std::vector<TiffEntry> directory = {}; ///< to which the value shall point
};

inline TiffEntry tiffText(quint32 tag, const QByteArray& text)
{
    return {tag, 2, text + '\0'};
}

inline TiffEntry tiffShort(quint32 tag, quint32 number)
{
    return {tag, 3, littleEndian(number, 2)};
}

/// A directory that starts at `offset`, its values and inner directories behind it.
inline QByteArray tiffDirectory(const std::vector<TiffEntry>& entries, quint32 offset)
{
    QByteArray directory = littleEndian(static_cast<quint32>(entries.size()), 2);
    QByteArray values;
    const auto end = offset + 2 + 12 * static_cast<quint32>(entries.size()) + 4;
    for (const TiffEntry& entry : entries) {
        const quint32 at = end + static_cast<quint32>(values.size());
        const quint32 unit = entry.type == 3 ? 2 : entry.type == 4 ? 4 : 1;
        QByteArray value = entry.value;
        if (!entry.directory.empty()) {
            value = littleEndian(at, 4);
            values += tiffDirectory(entry.directory, at);
        } else if (value.size() > 4) {
            values += value + QByteArray(value.size() % 2, '\0');
        }
        directory += littleEndian(entry.tag, 2) + littleEndian(entry.type, 2) +
                     littleEndian(static_cast<quint32>(value.size()) / unit, 4) +
                     (value.size() > 4 ? littleEndian(at, 4) : value.leftJustified(4, '\0'));
    }
    return directory + littleEndian(0, 4) + values;
}

/// Tags in ascending order.
inline QByteArray tiff(const std::vector<TiffEntry>& entries)
{
    return QByteArray("II*\0\x08\0\0\0", 8) + tiffDirectory(entries, 8);
}

/// A packet with one description that binds `prefix` to `uri`.
inline QByteArray xmpPacket(
    const QByteArray& inside, const QByteArray& prefix = "Camera",
    const QByteArray& uri = "http://maker.example/camera/")
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
           "rdf:about='' xmlns:" +
           prefix + "='" + uri + "'>" + inside + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

class ImageFiles : public testing::Test
{
protected:
    QString write(const QByteArray& content, const QString& name = QStringLiteral("image"))
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    ExifInfo read(const QByteArray& content)
    {
        ExifInfo exif;
        QString error;
        EXPECT_TRUE(readExif(write(content), exif, error)) << qPrintable(error);
        return exif;
    }

    QTemporaryDir m_folder;
};

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace lumo::exif {

/// The value of one EXIF tag, free of the metadata library's types.
struct TagValue
{
    QByteArray bytes;            ///< of text, byte and undefined tags
    std::vector<double> numbers; ///< the first 16; NaN for a zero denominator
};

/// What a file holds, before it is judged.
struct RawMetadata
{
    /// Keys are those of exiv2: "Exif.<group>.<tag>".
    std::map<std::string, TagValue> tags;
    QByteArray xmpPacket;
    QByteArray thermalBlock;    ///< see FlirBlock; empty if there is none
    std::size_t pixelWidth = 0; ///< of the main image; 0 if there is none
    std::size_t pixelHeight = 0;
    QString damage; ///< why only a part was read; empty if all was
};

} // namespace lumo::exif

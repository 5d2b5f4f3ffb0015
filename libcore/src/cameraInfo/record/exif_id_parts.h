// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <optional>

namespace lumo {

/// The parts of an EXIF identifier, as in "FC6310_8.8_5472x3648".
struct ExifIdParts
{
    QString key;           ///< "<model>[_<lens>]"
    QString focalLengthMm; ///< as it is written, with a point
    int width = 0;         ///< in pixels; 0 if it is no number or too large
    int height = 0;        ///< as the width
};

/// \returns nothing unless tokenizeExifId finds all parts
[[nodiscard]] std::optional<ExifIdParts> exifIdParts(const QString& identifier);

/// The key alone; of a text of another form all before its first "_".
[[nodiscard]] QString exifIdKey(const QString& identifier);

} // namespace lumo

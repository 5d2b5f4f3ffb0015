// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/record/exif_id_parts.h"

#include "lumo/cameradata/exif_info.h"
#include "lumo/foundation/text.h"

namespace lumo {

std::optional<ExifIdParts> exifIdParts(const QString& identifier)
{
    constexpr int kParts = 5;
    const QStringList tokens = tokenizeExifId(identifier);
    if (tokens.size() != kParts) {
        return std::nullopt;
    }
    return ExifIdParts{
        tokens[0], tokens[1] + QLatin1Char('.') + tokens[2], text::fromString<int>(tokens[3]),
        text::fromString<int>(tokens[4])};
}

QString exifIdKey(const QString& identifier)
{
    return tokenizeExifId(identifier).value(0);
}

} // namespace lumo

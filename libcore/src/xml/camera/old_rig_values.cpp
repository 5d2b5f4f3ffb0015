// SPDX-License-Identifier: Apache-2.0
#include "xml/camera/old_rig_values.h"

#include <algorithm>
#include <utility>

namespace lumo::xml {
namespace {

constexpr std::size_t kReferenceIndexVersion = 5;    ///< the first with the camera's number
constexpr std::size_t kUnsafeExifStringVersion = 11; ///< the only one with raw EXIF strings

/// Since version 12 an EXIF string has the characters only that an ExifID may have.
QString exifId2safeCameraModel(QString exifId)
{
    static const QString kept = QStringLiteral("-_.+ ");
    std::replace_if(
        exifId.begin(), exifId.end(),
        [](QChar character) { return !character.isLetterOrNumber() && !kept.contains(character); },
        QLatin1Char('-'));
    return exifId;
}

} // namespace

QString rigExifString(QString stored, std::size_t version)
{
    return version == kUnsafeExifStringVersion ? exifId2safeCameraModel(std::move(stored)) : stored;
}

std::size_t referenceCameraIndex(std::size_t stored, const QString& rigName, std::size_t version)
{
    constexpr std::size_t kAirinovReference = 3;
    return version < kReferenceIndexVersion && rigName == QLatin1String("Airinov")
               ? kAirinovReference
               : stored;
}

} // namespace lumo::xml

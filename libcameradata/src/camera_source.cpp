// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_source.h"

#include <array>
#include <utility>

namespace lumo::text {
namespace {

constexpr std::array<std::pair<CameraSource, const char*>, 5> kSources{{
    {CameraSource::InternalDatabase, "internal"},
    {CameraSource::EditedDatabase, "edited"},
    {CameraSource::UserDatabase, "user"},
    {CameraSource::Exif, "exif"},
    {CameraSource::Custom, "custom"},
}};

} // namespace

QString toString(CameraSource source)
{
    for (const auto& [value, text] : kSources) {
        if (value == source) {
            return QString::fromLatin1(text);
        }
    }
    return QStringLiteral("custom"); // for a number from a file that is no source
}

template <>
CameraSource fromString<CameraSource>(const QString& text, bool* ok)
{
    for (const auto& [value, known] : kSources) {
        if (text == QLatin1String(known)) {
            if (ok != nullptr) {
                *ok = true;
            }
            return value;
        }
    }
    if (ok != nullptr) {
        *ok = false;
    }
    return CameraSource::Custom;
}

} // namespace lumo::text

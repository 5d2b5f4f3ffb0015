// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/lens_type.h"

#include <array>
#include <utility>

namespace lumo::text {
namespace {

constexpr std::array<std::pair<LensType, const char*>, 3> kLensTypes{{
    {LensType::Perspective, "perspective"},
    {LensType::Fisheye, "fisheye"},
    {LensType::Spherical, "spherical"},
}};

} // namespace

QString toString(LensType type)
{
    for (const auto& [value, text] : kLensTypes) {
        if (value == type) {
            return QString::fromLatin1(text);
        }
    }
    return {};
}

template <>
LensType fromString<LensType>(const QString& text, bool* ok)
{
    for (const auto& [value, known] : kLensTypes) {
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
    return LensType::Perspective;
}

} // namespace lumo::text

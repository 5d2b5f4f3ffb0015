// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"
#include "lumo/foundation/text.h"

#include <QString>

namespace lumo {

/// Kind of a lens. Files use these numbers.
enum class LensType : int {
    Perspective = 0,
    Fisheye = 1,
    Spherical = 2,
};

namespace text {

/// "perspective", "fisheye" or "spherical"; empty for a number that is no lens type.
[[nodiscard]] LUMO_CAMERADATA_EXPORT QString toString(LensType type);

/// The reverse of toString, case-sensitive; Perspective (not ok) for any other text.
template <>
[[nodiscard]] LUMO_CAMERADATA_EXPORT LensType fromString<LensType>(const QString& text, bool* ok);

} // namespace text
} // namespace lumo

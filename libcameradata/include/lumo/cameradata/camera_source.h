// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"
#include "lumo/foundation/text.h"

#include <QString>

namespace lumo {

/// Where a camera's parameters came from. Files use these numbers, and conditions
/// compare them.
enum class CameraSource : int {
    InternalDatabase = 0, ///< unchanged from the shipped database
    EditedDatabase = 1,   ///< a user entry that replaces a shipped one of its name
    UserDatabase = 2,     ///< a user entry without a shipped one of its name
    Exif = 3,             ///< computed from the image's metadata alone
    Custom = 4,           ///< changed by hand, or equal to no database entry
};

namespace text {

/// "internal", "edited", "user", "exif" or "custom".
[[nodiscard]] LUMO_CAMERADATA_EXPORT QString toString(CameraSource source);

/// The reverse of toString, case-sensitive; Custom (not ok) for any other text.
template <>
[[nodiscard]] LUMO_CAMERADATA_EXPORT CameraSource
fromString<CameraSource>(const QString& text, bool* ok);

} // namespace text
} // namespace lumo

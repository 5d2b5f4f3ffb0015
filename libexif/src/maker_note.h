// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tag_reader.h"

#include <QString>

namespace lumo::exif {

/// The camera's serial number in maker notes that exiv2 does not read: of Reconyx and
/// Kodak, and the equipment of older Olympus cameras. Empty if there is none.
[[nodiscard]] QString findMakerNoteSerialNumber(const TagReader& tags);

/// The focal length (mm) in Canon's maker notes, where CRW files have it; 0 if there is none.
[[nodiscard]] double findCanonFocalLength(const TagReader& tags);

} // namespace lumo::exif

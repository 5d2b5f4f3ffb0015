// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/export.h"

namespace lumo::exif::sequoia {

/// Whether an image comes from a Parrot Sequoia, from its colour or one of its
/// four single-band cameras: maker "Parrot" and model "Sequoia", ignoring case.
[[nodiscard]] LUMO_EXIF_EXPORT bool isSequoia(const ExifInfo& exif);

} // namespace lumo::exif::sequoia

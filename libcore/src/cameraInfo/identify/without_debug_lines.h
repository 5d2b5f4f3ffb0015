// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"

namespace lumo {

/// The metadata that the picture would have without the debug lines of a Sequoia;
/// of other images the same.
[[nodiscard]] ExifInfo withoutDebugLines(const ExifInfo& exif);

} // namespace lumo

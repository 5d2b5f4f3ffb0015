// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/camera_from_exif.h"

#include <optional>

namespace lumo::exif {

/// Perspective lenses of a shorter 35 mm equivalent are not built.
inline constexpr double kWidestPerspective35Mm = 9.0;

/// What the 35 mm equivalent of the focal length yields; nothing without both lengths.
[[nodiscard]] std::optional<PixelSizeEvidence> pixelSizeOfEquivalent(const ExifInfo& exif);

/// What a stated field of view, or the projection of a panorama, yields.
[[nodiscard]] std::optional<PixelSizeEvidence> pixelSizeOfFieldOfView(const ExifInfo& exif);

} // namespace lumo::exif

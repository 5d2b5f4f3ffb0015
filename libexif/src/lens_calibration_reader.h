// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "tag_reader.h"
#include "xmp_packet.h"

#include <optional>

namespace lumo::exif {

/// The maker's calibration in an image's XMP; nothing if there is none or it is
/// not whole, which is noted with the property that is missing or wrong.
/// \param exif  with its focal length and size
[[nodiscard]] std::optional<LensCalibration> findLensCalibration(
    const XmpProperties& xmp, const TagReader& tags, const ExifInfo& exif);

} // namespace lumo::exif

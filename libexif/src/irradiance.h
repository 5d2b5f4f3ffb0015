// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tag_reader.h"
#include "xmp_packet.h"

#include <vector>

namespace lumo::exif {

/// The readings of the light sensor that an image's XMP holds; empty if none.
[[nodiscard]] std::vector<double> findIrradiance(const XmpProperties& xmp, const TagReader& tags);

} // namespace lumo::exif

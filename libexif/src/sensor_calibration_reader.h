// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "tag_reader.h"
#include "xmp_packet.h"

#include <vector>

namespace lumo::exif {

/// Camera:LineReadoutTime, which is in nanoseconds, as milliseconds; 0 if there is
/// none, or none that can be right, which is noted.
[[nodiscard]] double findLineReadoutTime(const XmpProperties& xmp, const TagReader& tags);

/// Camera:VignettingPolynomial2D with the powers of x and y that
/// Camera:VignettingPolynomial2DName lists, two numbers a term; empty if there is
/// none or it is not whole, which is noted.
[[nodiscard]] std::vector<VignettingTerm> findVignetting(
    const XmpProperties& xmp, const TagReader& tags);

} // namespace lumo::exif

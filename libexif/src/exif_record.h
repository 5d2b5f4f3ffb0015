// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "raw_metadata.h"
#include "tag_reader.h"
#include "xmp_packet.h"

namespace lumo::exif {

/// The record of an image but for its bands, with all numbers checked. The serial number is
/// that of a thermal block alone.
[[nodiscard]] ExifInfo makeRecord(
    const RawMetadata& raw, const TagReader& tags, const XmpProperties& xmp);

} // namespace lumo::exif

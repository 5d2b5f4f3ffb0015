// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"
#include "tag_reader.h"
#include "xmp_packet.h"

namespace lumo::exif {

struct ImageBands
{
    bands_t bands;
    bool named = false; ///< by the XMP
};

/// The bands that an image's XMP names, else those that follow from the number
/// of its channels.
/// \param jpegComponents  of the file's frame header; 0 if it is no JPEG
[[nodiscard]] ImageBands findBands(
    const TagReader& tags, const XmpProperties& xmp, int jpegComponents);

} // namespace lumo::exif

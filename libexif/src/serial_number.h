// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/exif/export.h"
#include "tag_reader.h"
#include "xmp_packet.h"

#include <QString>

class QIODevice;

namespace lumo::exif {

/// The body's serial number: of the EXIF tags, else the maker notes, else XMP;
/// empty if there is none. Numbers in decimal, as cameras show them.
[[nodiscard]] QString findSerialNumber(const TagReader& tags, const XmpProperties& xmp);

/// The serial number in the maker block of Phase One and Leaf raw files (IIQ),
/// which exiv2 does not read; empty if the file has no such block.
[[nodiscard]] LUMO_TEST_EXPORT QString readPhaseOneSerialNumber(QIODevice& file);

} // namespace lumo::exif

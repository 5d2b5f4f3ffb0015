// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <cstddef>
#include <optional>

class QFile;

namespace lumo::exif {

/// The part of an image file that holds its metadata but for the XMP packet, which
/// stands beside it.
struct MetadataBytes
{
    QByteArray header; ///< of a JPEG file; otherwise empty
    /// The header, or the mapped file, which stays mapped until the QFile is closed.
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    QByteArray xmpPacket; ///< empty if there is none
};

/// Takes the XMP packet out of a JPEG file (the header up to its first scan is
/// read) or of a TIFF one (mapped copy-on-write; the file itself is not changed).
///
/// exiv2 decodes XMP with process-wide tables and does not keep threads apart there;
/// what it is not shown it can read in parallel.
/// \returns  nothing for other formats, and for headers that are damaged
[[nodiscard]] std::optional<MetadataBytes> takeOutXmp(QFile& file);

} // namespace lumo::exif

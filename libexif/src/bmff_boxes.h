// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstddef>

namespace lumo::exif {

/// Whether the boxes of an ISO base media file (ISO/IEC 14496-12: HEIC, HEIF, AVIF, CR3)
/// are cheap to read. Only the outline is checked: whether the boxes contain what they
/// should shows when they are read.
///
/// exiv2 keeps the content of a box in memory while it reads the boxes inside, calls
/// itself for each level, and decodes the metadata again for each box that refers to them.
/// \param[out] error  if they are not, why; else untouched
[[nodiscard]] bool boxesAreCheap(const unsigned char* data, std::size_t size, QString& error);

/// A range of bytes.
struct ByteRange
{
    std::size_t begin = 0;
    std::size_t size = 0;
};

/// The first box with the data of pictures ("mdat"); empty at the end if there is none.
[[nodiscard]] ByteRange mediaData(const unsigned char* data, std::size_t size);

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/exif/export.h"
#include "tiff_bytes.h"

namespace lumo::exif {

/// Tags above this size are not read: tables, previews and colour profiles.
constexpr std::size_t kMaxTagBytes = 128 * 1024;

/// Blanks the entries of the directories of a TIFF structure that would make reading it
/// expensive: those above kMaxTagBytes, all but tiny ones once 8 MiB have been listed
/// (entries may refer to the same bytes, so that a small file can list any amount), and
/// references to directories beyond the first 256. Maker notes may have 8 MiB, since some
/// contain a preview; the entries of their own directories are limited alike.
///
/// exiv2 copies every value that a directory lists.
/// \param tiff  writable; positions count from its first byte
/// \returns  false if the structure lists more than a million entries
[[nodiscard]] LUMO_TEST_EXPORT bool limitTiff(TiffBytes tiff);

/// As limitTiff(), of each TIFF structure that starts anywhere in `data`, all counted
/// together: metadata inside other formats.
[[nodiscard]] bool limitEmbeddedTiffs(unsigned char* data, std::size_t size);

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo::sequoia {

/// Writes a copy of a Sequoia's raw TIFF image without its debug lines (see
/// sequoia.h): pixel rows 8 to 967, bit for bit, with all metadata.
///
/// Every byte stays where it was in the file, so that nothing that points into it
/// breaks, not even in maker notes; the rows move up in the space of the old ones
/// and what is left of that is zero. Beside the pixels only the image length, the
/// strip tags, and an EXIF image height of 970 change.
///
/// Taken are TIFF files in either byte order with one picture of 970 rows in
/// uncompressed strips, of any sample format and number of samples, up to 256 MiB.
///
/// \param target  a path where nothing is yet; the copy appears there whole and
///     flushed to the disk, or not at all
/// \param[out] error  on failure the reason in one line; else untouched: the file
///     cannot be read, is of another kind, is damaged, or (with its path) the copy
///     cannot be written
[[nodiscard]] LUMO_CORE_EXPORT bool writeWithoutDebugLines(
    const QString& source, const QString& target, QString& error);

} // namespace lumo::sequoia

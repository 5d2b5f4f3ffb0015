// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo::sequoia {

/// Writes a copy of a Sequoia's raw TIFF image without its debug lines (see
/// sequoia.h): pixel rows 8 to 967, bit for bit, with all metadata.
///
/// All metadata keep their place in the file, so that offsets stay correct, also those
/// in maker notes. The rows move up within the old pixel area, and the rest of the area
/// becomes zero. Besides the pixels, only the image length, the strip tags and an EXIF
/// image height of 970 change.
///
/// Accepts TIFF files in either byte order with one picture of 970 rows in
/// uncompressed strips, of any sample format and number of samples, up to 256 MiB.
///
/// \param target  a path that does not exist yet; the copy appears there complete and
///     flushed to the disk, or not at all
/// \param[out] error  on failure the reason in one line, else untouched. The file
///     cannot be read, is of another kind or damaged, or the copy cannot be written
///     (the reason then names the target's path)
[[nodiscard]] LUMO_CORE_EXPORT bool writeWithoutDebugLines(
    const QString& source, const QString& target, QString& error);

} // namespace lumo::sequoia

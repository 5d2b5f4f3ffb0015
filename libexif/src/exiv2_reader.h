// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raw_metadata.h"

#include <QString>

class QFile;

namespace lumo::exif {

/// Reads the EXIF tags, the XMP packet and the size of an image file. Tags of more
/// than 128 KiB (tables, previews) are left out.
///
/// May be called by several threads. JPEG and TIFF files (DNG and most raw files
/// are TIFF) are read side by side, others one at a time.
/// \param file  open for reading; its position is changed
/// \param[out] error  on failure the reason in one line, without the path
[[nodiscard]] bool readRawMetadata(QFile& file, RawMetadata& raw, QString& error);

} // namespace lumo::exif

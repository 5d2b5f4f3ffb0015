// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raw_metadata.h"

#include <QString>

namespace lumo::exif {

/// Reads the EXIF tags, the XMP packet and the size of an image file.
/// May be called by several threads; the work is done one file at a time. Tags of more than 128 KiB
/// (tables, previews) are left out. \param[out] error  on failure the reason in one line, without
/// the path
[[nodiscard]] bool readRawMetadata(const QString& path, RawMetadata& raw, QString& error);

} // namespace lumo::exif

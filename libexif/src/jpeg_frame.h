// SPDX-License-Identifier: Apache-2.0
#pragma once

class QIODevice;

namespace lumo::exif {

/// Number of components in the frame header of a JPEG file; 0 if the file is no
/// JPEG, holds no frame header or is damaged before it.
[[nodiscard]] int readJpegComponents(QIODevice& file);

} // namespace lumo::exif

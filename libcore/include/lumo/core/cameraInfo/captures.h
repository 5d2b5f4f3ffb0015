// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/input_image.h"
#include "lumo/core/export.h"

#include <QString>

#include <vector>

namespace lumo {

/// Images that were taken together, by the cameras of one rig or by one camera.
struct Capture
{
    /// The identifier in the metadata; failing that, the folder and what the
    /// file names have in common.
    QString id;
    std::vector<InputImage> images; ///< by camera index in the metadata, then path
};

/// Groups images that were taken together.
///
/// Images with a capture identifier in their metadata are grouped by it. An image
/// without one joins another image if both are in the same folder, their names
/// agree up to the last "_" or "-", and their times differ by at most 1 s. (EXIF
/// times are often whole seconds, so one capture may span two of them.) A missing
/// time agrees with any.
/// \returns the captures in the order of their first images
[[nodiscard]] LUMO_CORE_EXPORT std::vector<Capture> groupCaptures(
    const std::vector<InputImage>& images);

} // namespace lumo

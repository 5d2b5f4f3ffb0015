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

/// Puts images that were taken together side by side.
///
/// The capture identifier in the metadata decides. Files without one belong
/// together, and to the capture of files that have one, if they lie in the same
/// folder, their names agree up to the last "_" or "-", and their times, where
/// both say one, differ by a second at most.
/// \returns the captures in the order of their first images
[[nodiscard]] LUMO_CORE_EXPORT std::vector<Capture> groupCaptures(
    const std::vector<InputImage>& images);

} // namespace lumo

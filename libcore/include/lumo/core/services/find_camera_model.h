// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/export.h"

namespace lumo {

/// Finds the camera of an image in the process's camera model database: the model
/// named like the image's first identifier, with exactly the image's serial number.
/// Ignores mappings and generic models; CameraModelDb::findCameraModel uses them.
/// \returns a default CameraData if there is no such model
///
/// Uses the database of serviceCamDB(), which has no lock: call it only on the
/// thread that uses this database.
[[nodiscard]] LUMO_CORE_EXPORT CameraData findCameraModel(const ExifInfo& exif);

} // namespace lumo

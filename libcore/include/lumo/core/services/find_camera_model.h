// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/export.h"

namespace lumo {

/// The camera of an image, from the process's camera model database: the model
/// that is named as the first identifier of the image says, for exactly the
/// image's serial number. Mappings and generic models are not asked; see
/// CameraModelDb::findCameraModel for those.
/// \returns a default CameraData if there is no such model
///
/// Uses the database of serviceCamDB(), so it is called on the thread that uses
/// that.
[[nodiscard]] LUMO_CORE_EXPORT CameraData findCameraModel(const ExifInfo& exif);

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_db.h"

namespace lumo::program {

/// Fills the store with the databases that the commands look cameras up in.
/// \returns false, and said on the standard error stream, if that failed
[[nodiscard]] bool loadDatabase(CameraModelDb& database);

} // namespace lumo::program

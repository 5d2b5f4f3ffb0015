// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_db.h"
#include "show/output.h"

namespace lumo::program {

/// An empty store over the camera database folder of the data directory.
[[nodiscard]] CameraModelDb openDatabase(const CommonOptions& options);

/// Fills the store with the shipped database and the user's own.
/// \returns false, and said on the standard error stream, if that failed; what
///     could be loaded is loaded
[[nodiscard]] bool loadDatabase(CameraModelDb& database);

/// The same for a change. Where the user's own did not load a change would replace it.
[[nodiscard]] bool loadForEditing(CameraModelDb& database);

} // namespace lumo::program

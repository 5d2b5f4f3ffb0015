// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_model_db.h"
#include "show/output.h"

namespace lumo::program {

/// An empty store over the camera database folder of the data directory.
[[nodiscard]] CameraModelDb openDatabase(const CommonOptions& options);

/// Fills the store with the shipped database and the user's own.
/// \returns false, with a message on the standard error stream, if a part failed to
///     load; all other parts are loaded
[[nodiscard]] bool loadDatabase(CameraModelDb& database);

/// As loadDatabase(database), before a change of the user's database. Also fails if the
/// user's database does not allow editing, as after its file did not load: saving would
/// replace that file.
[[nodiscard]] bool loadForEditing(CameraModelDb& database);

} // namespace lumo::program

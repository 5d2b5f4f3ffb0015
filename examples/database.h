// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <lumo/core/cameraInfo/camera_model_db.h>

/// The camera database with its files in this folder, not yet loaded. What the user
/// adds is kept there; the file of the shipped database is made at the first load.
lumo::CameraModelDb databaseIn(const QString& folder);

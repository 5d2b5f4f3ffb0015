// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

namespace lumo {

class AbstractCamera;
struct CameraModelFromDB;

/// Copies an adjusted camera's lens into a record: principal point, focal
/// length, distortion or fisheye terms. The millimetre values follow from the
/// record's pixel size, which stays, as do image size, shutter and vignetting.
/// \throws std::invalid_argument if the camera's class is none of the known lens models
LUMO_CORE_EXPORT void loadOptimizedParameters(
    const AbstractCamera& optimised, CameraModelFromDB& model);

} // namespace lumo

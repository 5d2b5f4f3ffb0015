// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

namespace lumo {

class AbstractCamera;
struct CameraModelFromDB;

/// Copies an adjusted camera into a record: image size, principal point, focal
/// length (of a fisheye lens too: that at the optical axis), lens type, and its
/// terms. These are of a perspective lens K1 to K3, T1 and T2 (0 where its model has
/// none) and the highest power of r: 6, or 0 without distortion; of a fisheye lens
/// the polynomial with its degree and the affine map, neither held at zero nor
/// symmetric. The millimetre values follow from the record's pixel size, which stays,
/// as do shutter and vignetting, and the terms of the other lens type.
/// \throws std::invalid_argument if the camera's class is none of the known lens models
LUMO_CORE_EXPORT void loadOptimizedParameters(
    const AbstractCamera& optimised, CameraModelFromDB& model);

} // namespace lumo

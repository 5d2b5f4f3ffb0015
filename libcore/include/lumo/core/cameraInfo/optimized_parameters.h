// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

namespace lumo {

class AbstractCamera;
struct CameraModelFromDB;

/// Copies an adjusted camera into a record: image size, principal point, focal
/// length (for a fisheye lens: at the optical axis), lens type and lens terms.
///
/// Terms of a perspective lens: K1 to K3, T1 and T2 (0 if the model has none), and
/// the highest power of r, which is 6, or 0 without distortion. Terms of a fisheye
/// lens: the polynomial with its degree, and the affine map, which is marked as
/// neither symmetric nor fixed at zero.
///
/// Values in mm are computed with the record's pixel size. Pixel size, shutter,
/// vignetting and the terms of the other lens type stay.
/// \throws std::invalid_argument if the camera's class is none of the known lens models
LUMO_CORE_EXPORT void loadOptimizedParameters(
    const AbstractCamera& optimised, CameraModelFromDB& model);

} // namespace lumo

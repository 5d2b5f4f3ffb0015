// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_params.h"
#include "lumo/cameradata/exif_info.h"

#include <QString>

namespace lumo::exif {

/// The focal length in pixels against which the EXIF one in millimetres is to be
/// held, the design's if it is stated; 0 if the calibration is in millimetres.
[[nodiscard]] double comparableFocalLengthPx(const LensCalibration& calibration);

/// Gives a camera that has its image size and pixel size the lens that was
/// calibrated.
/// \param[in,out] params  untouched if the calibration is refused
/// \return why it is refused; empty if it is not
[[nodiscard]] QString applyCalibration(
    const LensCalibration& calibration, double exifFocalLengthMm, CameraParams& params);

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/fisheye_params.h"

#include <array>
#include <optional>

namespace lumo {

/// A maker's calibration of one camera, as its images carry it, in the signs,
/// orders and scales of PerspectiveParams and FisheyeParams. Pixels are those of
/// the recorded size, and width, height and both axes those of the sensor in
/// landscape, however the image is held.
struct LensCalibration
{
    /// Of a perspective lens one of the two, the other is 0; of a fisheye lens none.
    double focalLengthMm = 0.0;
    double focalLengthPx = 0.0; ///< mean of both axes

    /// The focal length of the camera's design; 0 if not stated.
    double nominalFocalLengthPx = 0.0;

    /// From the outer corner of the upper left pixel; nothing if given in pixels.
    std::optional<std::array<double, 2>> principalPointMm;
    /// Pixels from the image's middle, to the right and down; if not in mm.
    std::array<double, 2> principalPointOffsetPx = {0.0, 0.0};

    std::array<double, 3> radial = {0.0, 0.0, 0.0}; ///< K1, K2, K3
    std::array<double, 2> tangential = {0.0, 0.0};  ///< T1, T2
    std::optional<FisheyeParams> fisheye;           ///< nothing of a perspective lens

    bool operator==(const LensCalibration&) const = default;
};

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/fisheye_params.h"

#include <array>
#include <optional>

namespace lumo {

/// The maker's calibration of one camera, from the metadata of its images. Signs, orders
/// and scales are those of PerspectiveParams and FisheyeParams. Pixels refer to the
/// recorded size and both axes to the sensor in landscape format, whatever the
/// orientation of the image.
struct LensCalibration
{
    /// A perspective lens has one of these two, the other is 0; a fisheye lens has none.
    double focalLengthMm = 0.0;
    double focalLengthPx = 0.0; ///< mean of both axes

    /// The focal length of the camera's design; 0 if not stated.
    double nominalFocalLengthPx = 0.0;

    /// Measured from the outer corner of the upper left pixel; unset if the maker gives
    /// it in pixels.
    std::optional<std::array<double, 2>> principalPointMm;
    /// Pixels to the right and down from the image centre; used if principalPointMm is
    /// unset.
    std::array<double, 2> principalPointOffsetPx = {0.0, 0.0};

    std::array<double, 3> radial = {0.0, 0.0, 0.0}; ///< K1, K2, K3
    std::array<double, 2> tangential = {0.0, 0.0};  ///< T1, T2
    std::optional<FisheyeParams> fisheye;           ///< unset for a perspective lens

    bool operator==(const LensCalibration&) const = default;
};

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"
#include "lumo/camerageometry/perspective_camera.h"

#include <Eigen/Core>

#include <cstddef>

namespace lumo {

/// A perspective lens without distortion. Its valid field is all of Z > 0.
class LUMO_CAMERAGEOMETRY_EXPORT PerspectiveCamera0 final : public PerspectiveCamera
{
public:
    /// \param principalPoint, focalLength  pixels
    /// \throws std::invalid_argument as PerspectiveCamera
    PerspectiveCamera0(
        std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
        double focalLength);
};

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"
#include "lumo/camerageometry/perspective_camera.h"

#include <Eigen/Core>

#include <array>
#include <cstddef>

namespace lumo {

/// A perspective lens with radial distortion (see BrownDistortion).
class LUMO_CAMERAGEOMETRY_EXPORT PerspectiveCamera3 final : public PerspectiveCamera
{
public:
    /// \param principalPoint, focalLength  pixels
    /// \param radial  K1, K2, K3
    /// \throws std::invalid_argument as PerspectiveCamera and BrownDistortion
    PerspectiveCamera3(
        std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
        double focalLength, const std::array<double, 3>& radial);

    /// Radial coefficients K1, K2, K3.
    [[nodiscard]] double getRD1() const noexcept { return distortion().radial()[0]; }
    [[nodiscard]] double getRD2() const noexcept { return distortion().radial()[1]; }
    [[nodiscard]] double getRD3() const noexcept { return distortion().radial()[2]; }
};

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"
#include "lumo/camerageometry/perspective_camera.h"

#include <Eigen/Core>

#include <array>
#include <cstddef>

namespace lumo {

/// A perspective lens with radial and tangential distortion (see
/// BrownDistortion).
class LUMO_CAMERAGEOMETRY_EXPORT PerspectiveCamera5 final : public PerspectiveCamera
{
public:
    /// \param principalPoint, focalLength  pixels
    /// \param radial      K1, K2, K3
    /// \param tangential  T1, T2
    /// \throws std::invalid_argument as PerspectiveCamera and BrownDistortion
    PerspectiveCamera5(
        std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
        double focalLength, const std::array<double, 3>& radial,
        const std::array<double, 2>& tangential);

    /// Radial coefficients K1, K2, K3.
    [[nodiscard]] double getRD1() const noexcept { return distortion().radial()[0]; }
    [[nodiscard]] double getRD2() const noexcept { return distortion().radial()[1]; }
    [[nodiscard]] double getRD3() const noexcept { return distortion().radial()[2]; }

    /// Tangential coefficients T1, T2.
    [[nodiscard]] double getTD1() const noexcept { return distortion().tangential()[0]; }
    [[nodiscard]] double getTD2() const noexcept { return distortion().tangential()[1]; }
};

} // namespace lumo

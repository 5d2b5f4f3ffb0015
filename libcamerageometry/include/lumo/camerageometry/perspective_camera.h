// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/abstract_camera.h"
#include "lumo/camerageometry/brown_distortion.h"
#include "lumo/camerageometry/export.h"

#include <Eigen/Core>

#include <cstddef>
#include <optional>

namespace lumo {

/// A central perspective lens: (u, v) = (cx, cy) + f distort(X/Z, Y/Z), Z > 0,
/// with BrownDistortion. The derived classes PerspectiveCamera0, PerspectiveCamera3 and
/// PerspectiveCamera5 are named after the number of distortion terms that they use.
class LUMO_CAMERAGEOMETRY_EXPORT PerspectiveCamera : public AbstractCamera
{
public:
    [[nodiscard]] LensType lensType() const override { return LensType::Perspective; }
    [[nodiscard]] double focalLength() const override { return m_focalLength; }
    [[nodiscard]] std::optional<Eigen::Vector2d> project(
        const Eigen::Vector3d& pointInCameraFrame) const override;
    [[nodiscard]] std::optional<Eigen::Vector3d> backProject(
        const Eigen::Vector2d& pixel) const override;

    /// The distortion; terms that this lens does not use are 0.
    [[nodiscard]] const BrownDistortion& distortion() const noexcept { return m_distortion; }

protected:
    /// \param focalLength  pixels
    /// \throws std::invalid_argument if the focal length is not finite and
    ///         greater than 0, or as AbstractCamera
    PerspectiveCamera(
        std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
        double focalLength, const BrownDistortion& distortion);

private:
    double m_focalLength;
    BrownDistortion m_distortion;
};

} // namespace lumo

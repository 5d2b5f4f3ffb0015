// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/perspective_camera.h"

#include <cmath>
#include <stdexcept>

namespace lumo {

PerspectiveCamera::PerspectiveCamera(
    std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
    double focalLength, const BrownDistortion& distortion)
    : AbstractCamera(imageWidth, imageHeight, principalPoint)
    , m_focalLength(focalLength)
    , m_distortion(distortion)
{
    if (!(std::isfinite(focalLength) && focalLength > 0.0)) {
        throw std::invalid_argument("perspective camera: the focal length is not above 0");
    }
}

std::optional<Eigen::Vector2d> PerspectiveCamera::project(const Eigen::Vector3d& point) const
{
    if (!point.allFinite() || point.z() <= 0.0) {
        return std::nullopt;
    }
    const auto distorted = m_distortion.distort({point.x() / point.z(), point.y() / point.z()});
    if (!distorted) {
        return std::nullopt;
    }
    const Eigen::Vector2d pixel = principalPoint() + m_focalLength * *distorted;
    return pixel.allFinite() ? std::optional(pixel) : std::nullopt;
}

std::optional<Eigen::Vector3d> PerspectiveCamera::backProject(const Eigen::Vector2d& pixel) const
{
    const auto ideal = m_distortion.undistort((pixel - principalPoint()) / m_focalLength);
    if (!ideal) {
        return std::nullopt;
    }
    return Eigen::Vector3d(ideal->x(), ideal->y(), 1.0).stableNormalized();
}

} // namespace lumo

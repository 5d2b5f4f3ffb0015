// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/perspective_camera_5.h"

namespace lumo {

PerspectiveCamera5::PerspectiveCamera5(
    std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
    double focalLength, const std::array<double, 3>& radial,
    const std::array<double, 2>& tangential)
    : PerspectiveCamera(
          imageWidth, imageHeight, principalPoint, focalLength, BrownDistortion(radial, tangential))
{}

} // namespace lumo

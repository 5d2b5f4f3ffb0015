// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/perspective_camera_3.h"

namespace lumo {

PerspectiveCamera3::PerspectiveCamera3(
    std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
    double focalLength, const std::array<double, 3>& radial)
    : PerspectiveCamera(
          imageWidth, imageHeight, principalPoint, focalLength, BrownDistortion(radial, {0.0, 0.0}))
{}

} // namespace lumo

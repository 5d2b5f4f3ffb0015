// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/perspective_camera_0.h"

namespace lumo {

PerspectiveCamera0::PerspectiveCamera0(
    std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
    double focalLength)
    : PerspectiveCamera(imageWidth, imageHeight, principalPoint, focalLength, BrownDistortion())
{}

} // namespace lumo

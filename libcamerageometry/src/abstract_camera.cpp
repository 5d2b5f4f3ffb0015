// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/abstract_camera.h"

#include <stdexcept>

namespace lumo {

AbstractCamera::AbstractCamera(
    std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint)
    : m_imageWidth(imageWidth)
    , m_imageHeight(imageHeight)
    , m_principalPoint(principalPoint)
{
    if (imageWidth == 0 || imageHeight == 0) {
        throw std::invalid_argument("camera: the image size is 0");
    }
    if (!principalPoint.allFinite()) {
        throw std::invalid_argument("camera: the principal point is not finite");
    }
}

AbstractCamera::~AbstractCamera() = default;

} // namespace lumo

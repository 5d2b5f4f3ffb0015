// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_relatives.h"

#include <cmath>

namespace lumo {

/// Whether all numbers of a pose, tolerances too, are finite.
[[nodiscard]] inline bool isFinite(const rig_relatives_t& pose)
{
    return std::isfinite(pose.rotX) && std::isfinite(pose.rotY) && std::isfinite(pose.rotZ) &&
           std::isfinite(pose.tolRotX) && std::isfinite(pose.tolRotY) &&
           std::isfinite(pose.tolRotZ) && pose.transl.allFinite() && pose.tolTransl.allFinite();
}

} // namespace lumo

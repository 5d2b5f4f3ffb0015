// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_db_iterator.h"

#include <vector>

namespace lumo {

/// The rigs of a store that apply to images: the user's, then the internal ones that no
/// user's rig of the same name overrides. The store owns the rigs.
[[nodiscard]] std::vector<RigDBIterator::Item> rigsInForce(const CameraModelDb& store);

} // namespace lumo

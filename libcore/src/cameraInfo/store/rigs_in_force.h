// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_db_iterator.h"

#include <vector>

namespace lumo {

/// The rigs of a store that images may be of: the user's, then the internal ones
/// but for those that a user's of the same name overrides. The store owns them.
[[nodiscard]] std::vector<RigDBIterator::Item> rigsInForce(const CameraModelDb& store);

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <vector>

namespace lumo {

class CameraModelDb;

/// Something about an entry of the internal database.
struct DatabaseFinding
{
    QString entry;
    QString text;
    bool fault = false; ///< the entry cannot be used as it is; else it is only doubtful
};

/// Looks through the internal database.
///
/// Faults: a camera that its own identifier does not find, an identifier that two
/// cameras share, a mapping to no camera, a rig that a capture of its own cameras
/// does not find. Doubts: a pixel size that differs by more than 5 % from the
/// table of sensor sizes, where that knows the model and the image is not
/// narrower than its sensor.
[[nodiscard]] LUMO_CORE_EXPORT std::vector<DatabaseFinding> checkInternalDatabase(
    const CameraModelDb& database);

} // namespace lumo

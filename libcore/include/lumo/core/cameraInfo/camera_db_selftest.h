// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <vector>

namespace lumo {

class CameraModelDb;

/// A fault or a doubt found in one entry of the internal database.
struct DatabaseFinding
{
    QString entry;      ///< the key of the camera, mapping or rig
    QString text;       ///< what is wrong, in words
    bool fault = false; ///< true: the entry cannot be used; false: it is only doubtful
};

/// Checks every entry of the internal database.
///
/// Faults:
///  - a camera that a search for its own identifier does not find
///  - an identifier that two cameras share
///  - numbers that cannot be right: parameters that `CameraParams::valid` refuses,
///    a sensor side outside 0.5 to 120 mm, a principal point outside the image,
///    a read-out of 1 s or more, a known band centre outside 300 to 15000 nm
///  - a mapping to a camera that does not exist
///  - a rig that a search with a capture of its own cameras does not find
///
/// Doubts: a sensor side that differs by more than 5 % from the table of sensor
/// sizes, if the table lists the model. A crop is no doubt: one side of it equals
/// the sensor's and the other is shorter. The table lists one sensor per model. If
/// another camera of that model has the listed sensor, the doubt names that camera.
[[nodiscard]] LUMO_CORE_EXPORT std::vector<DatabaseFinding> checkInternalDatabase(
    const CameraModelDb& database);

} // namespace lumo

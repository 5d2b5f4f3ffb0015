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
/// cameras share, numbers that cannot be right (`CameraParams::valid`; a side of
/// the sensor not 0.5 to 120 mm long, a principal point outside the image, a
/// read-out of a second and more, a band whose centre is known and not between
/// 300 and 15000 nm), a mapping to no camera, a rig that a capture of its own
/// cameras does not find.
///
/// Doubts: a sensor that differs by more than 5 % from the table of sensor sizes,
/// where that knows the model. An image may be a crop: one of its sides is then
/// that of the sensor and the other shorter. The table knows one sensor of a
/// model; where the database has a camera with it, the doubt about another of
/// that model names it.
[[nodiscard]] LUMO_CORE_EXPORT std::vector<DatabaseFinding> checkInternalDatabase(
    const CameraModelDb& database);

} // namespace lumo

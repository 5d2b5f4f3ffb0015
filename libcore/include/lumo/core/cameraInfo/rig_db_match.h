// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/core/cameraInfo/rig_model.h"
#include "lumo/core/export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::rigdb {

/// How well a rig fits a filter, and which of its cameras is which. A value;
/// starts as the match with a filter that has no cameras.
struct LUMO_CORE_EXPORT RigDBMatch
{
    /// -1: the rig does not fit; the other fields are then empty and false.
    /// Otherwise the sum over the cameras of the number of properties that agree
    /// (serial number, detection string, EXIF string, bands), and 3 more for
    /// each serial number.
    std::int32_t score = 0;
    /// Filter camera i is the rig's camera assignment[i].
    std::vector<std::size_t> assignment;
    /// Some camera was recognised by its serial number.
    bool serialMatched = false;

    [[nodiscard]] bool matched() const { return score >= 0; }

    bool operator==(const RigDBMatch&) const = default;
};

/// Whether a is worse than b: it has the lower score; else it leaves fewer
/// cameras (of the shorter assignment) at their own number; else it alone
/// assigns nothing; else it assigns more cameras. Matches of which neither is
/// worse are equally good, not equal.
[[nodiscard]] LUMO_CORE_EXPORT bool operator<(const RigDBMatch& a, const RigDBMatch& b);
/// a is not better than b.
[[nodiscard]] LUMO_CORE_EXPORT bool operator<=(const RigDBMatch& a, const RigDBMatch& b);

/// The best assignment of a filter's cameras to a rig's.
///
/// Two cameras fit unless a property that both have differs (strings ignoring
/// case, bands by their names); a disabled camera has no properties. Cameras
/// distinguished by detection strings may be assigned in any order unless
/// `fixedOrder`; there must be as many as the rig has, and no two enabled ones
/// of the rig or of the filter may share a detection string. Otherwise filter
/// camera i is the rig's camera i, and the filter may have fewer cameras.
///
/// Of equally good assignments the one that gives the last filter camera the
/// lowest number is taken, then the one before it, and so on. Time grows with
/// the cube of the number of cameras.
/// \returns score -1 if no complete assignment fits, the detections differ, or
///     the rig's refCameraIndex is not one of its cameras; a default match if
///     the filter has no cameras. Does not throw.
[[nodiscard]] LUMO_CORE_EXPORT RigDBMatch
matchRigDB(const RigModel& rig, const rig_filter_t& filter, bool fixedOrder);

} // namespace lumo::rigdb

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/rig_enums.h"
#include "lumo/core/cameraInfo/rig_camera.h"
#include "lumo/core/export.h"

#include <QString>

#include <cstddef>
#include <iosfwd>
#include <vector>

namespace lumo {

/// Search terms for a rig model: what is known of the cameras that took a set of
/// images together, one camera filter per camera. A value.
struct LUMO_CORE_EXPORT rig_filter_t
{
    QString name; ///< the rig to try first; may be empty
    std::vector<rig_camera_filter_t> cameras;
    RigCameraDetection detection;

    /// \param count  number of camera filters, of whose cameras nothing is known
    rig_filter_t(std::size_t count, const QString& rigName, RigCameraDetection detectedBy);

    /// No name, and nothing is known of any enabled camera.
    [[nodiscard]] bool empty() const;
    /// Two or more cameras are enabled, each with a serial number.
    [[nodiscard]] bool serialNumberAvail() const;
    /// Two or more cameras are enabled, and one of them has bands.
    [[nodiscard]] bool bandsAvail() const;
    [[nodiscard]] bool disabledCameraFilters() const;

    /// Whether a rig can be looked for: two or more cameras are enabled, each
    /// with an EXIF string.
    /// \param[out] serialSeen  some enabled camera has a serial number
    /// \param[out] uniqueDirOrPrefix  cameras are distinguished by detection
    ///     strings, and no two enabled cameras share one (case-sensitive).
    ///     Checking stops at the first camera without EXIF string: both results then
    ///     cover the cameras before it, and `serialSeen` also that camera's serial
    ///     number. If fewer than two cameras are enabled, both are false.
    [[nodiscard]] bool verify(bool& serialSeen, bool& uniqueDirOrPrefix) const;
    /// verify() succeeds and sets its `uniqueDirOrPrefix`.
    [[nodiscard]] bool uniqueDirOrPrefix() const;

    void clearBands();
    void cleanKeysInCameraFilters(RigKey key);
    /// Leaves nothing but one key of each camera: empties the name, the bands
    /// and the other keys.
    void clearExcept(RigKey kept);

    /// All fields, strings case-sensitive.
    bool operator==(const rig_filter_t&) const = default;
};

/// For logs: "filter for rig name=N, detection=D, 2 cameras=[ [{0:A1,}] [{0:A2,}] ]".
LUMO_CORE_EXPORT std::ostream& operator<<(std::ostream& out, const rig_filter_t& filter);

} // namespace lumo

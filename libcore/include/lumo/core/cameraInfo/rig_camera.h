// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"
#include "lumo/core/export.h"

#include <QString>

#include <array>
#include <cstddef>
#include <iosfwd>

namespace lumo {

/// What one camera of a rig can be recognised by. The number is also the index
/// into a camera's keys.
enum class RigKey : int {
    SerialNumber = 0,    ///< of the camera's body
    DetectionString = 1, ///< folder name or file-name prefix of its images
    ExifString = 2,      ///< camera identification in the metadata of its images
};

/// All of them, in the order of their numbers.
inline constexpr std::array<RigKey, 3> kRigKeys{
    RigKey::SerialNumber, RigKey::DetectionString, RigKey::ExifString};

/// What is known of one camera from its images, or demanded of them. A value;
/// starts enabled, with nothing known.
struct LUMO_CORE_EXPORT rig_camera_filter_t
{
    /// A disabled camera keeps its number but is neither matched nor counted.
    bool enabled = true;
    bands_t bands; ///< empty if not known
    /// Indexed by RigKey; empty if not known.
    std::array<QString, kRigKeys.size()> keys;

    rig_camera_filter_t() = default;
    rig_camera_filter_t(
        const QString& exifString, const QString& serialNumber, const QString& detectionString,
        const bands_t& cameraBands);

    [[nodiscard]] QString& operator[](RigKey key) { return keys[static_cast<std::size_t>(key)]; }
    [[nodiscard]] const QString& operator[](RigKey key) const
    {
        return keys[static_cast<std::size_t>(key)];
    }

    /// Disabled, or nothing is known of it.
    [[nodiscard]] bool empty() const;

    /// All fields, the keys case-sensitive, the bands number by number.
    bool operator==(const rig_camera_filter_t&) const = default;

    /// "Unknown": the EXIF string of a camera whose EXIF string is not known.
    [[nodiscard]] static const QString& unknownExifString();
};

/// For logs, as "[{0:A123,2:Cam X,}]": "disabled, " and the band names in
/// braces come first where they apply, then the keys that are known.
LUMO_CORE_EXPORT std::ostream& operator<<(std::ostream& out, const rig_camera_filter_t& filter);

/// A camera of a rig model: what it is recognised by, and its display name.
/// The accessors read the fields of the same name in the base; filter() gives
/// access for writing.
struct LUMO_CORE_EXPORT RigModelCameraAttr : rig_camera_filter_t
{
    QString name;

    RigModelCameraAttr() = default;
    RigModelCameraAttr(
        const QString& cameraName, const bands_t& cameraBands, const QString& exifString);

    [[nodiscard]] bool enabled() const { return rig_camera_filter_t::enabled; }
    [[nodiscard]] const bands_t& bands() const { return rig_camera_filter_t::bands; }
    [[nodiscard]] rig_camera_filter_t& filter() { return *this; }
    [[nodiscard]] const rig_camera_filter_t& filter() const { return *this; }

    /// The filter part and the name, case-sensitive.
    bool operator==(const RigModelCameraAttr&) const = default;
};

} // namespace lumo

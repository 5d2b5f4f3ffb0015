// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"
#include "lumo/cameradata/camera_params.h"
#include "lumo/cameradata/export.h"

#include <QString>

#include <array>

namespace lumo {

/// Whether the offset between camera and positioning antenna is known. Files use
/// these numbers.
enum class LeverArmState : int {
    None = 0,
    Known = 1,
};

/// The camera of one image: its parameters and bands, and which of them the user has
/// protected from being replaced by a camera model.
struct LUMO_CAMERADATA_EXPORT CameraData
{
    QString serialNumber; ///< of the camera body; empty if not known
    CameraParams params;
    bands_t bands;
    bool fixedBands = false;             ///< a camera model must not replace the bands
    bool keepVignetting = false;         ///< a camera model must not replace the vignetting
    bool keepOptimisedInternals = false; ///< nor lens and principal point
    bool keepShutter = false;            ///< nor the line read-out time
    QString exifId;                      ///< identifier of the image's camera; may be empty
    int id = 0;                          ///< number of the camera within a project
    LeverArmState leverArmState = LeverArmState::None;
    std::array<double, 3> leverArm = {};          ///< x, y, z in metres, camera frame
    std::array<double, 3> leverArmPrecision = {}; ///< standard deviations, metres

    /// Sets `bands` and `fixedBands`.
    void setBands(const bands_t& newBands, bool fixed);

    /// Equal parameters (see CameraParams::equal) and the same bands in order.
    [[nodiscard]] bool equal(const CameraData& other, bool withVignetting) const;

    /// Whether name, image size, pixel size or (for a perspective lens) focal
    /// length is missing.
    [[nodiscard]] bool incomplete() const;

    /// Compares all fields exactly.
    bool operator==(const CameraData&) const = default;
};

} // namespace lumo

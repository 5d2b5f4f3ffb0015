// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"
#include "lumo/cameradata/camera_params.h"
#include "lumo/cameradata/export.h"

#include <QString>

#include <array>

namespace lumo {

/// Whether the offset between camera and positioning antenna is known. The
/// number 1 is the one that files ask for.
enum class LeverArmState : int {
    None = 0,
    Known = 1,
};

/// One image's camera: its parameters and bands, and what the user has fixed.
struct LUMO_CAMERADATA_EXPORT CameraData
{
    QString serialNumber; ///< of the camera body; empty if not known
    CameraParams params;
    bands_t bands;
    bool fixedBands = false;             ///< the bands are the user's: no model replaces them
    bool keepVignetting = false;         ///< a new model leaves the vignetting as it is
    bool keepOptimisedInternals = false; ///< likewise lens and principal point
    bool keepShutter = false;            ///< likewise the line read-out time
    QString exifId;                      ///< identifier of the image's camera; may be empty
    int id = 0;                          ///< number of the camera within a project
    LeverArmState leverArmState = LeverArmState::None;
    std::array<double, 3> leverArm = {};          ///< x, y, z in metres, camera frame
    std::array<double, 3> leverArmPrecision = {}; ///< standard deviations, metres

    void setBands(const bands_t& newBands, bool fixed);

    /// Equal parameters (see CameraParams::equal) and the same bands in order.
    [[nodiscard]] bool equal(const CameraData& other, bool withVignetting) const;

    /// Whether name, image size, pixel size or (for a perspective lens) focal
    /// length is missing.
    [[nodiscard]] bool incomplete() const;

    /// Exact equality of everything.
    bool operator==(const CameraData&) const = default;
};

} // namespace lumo

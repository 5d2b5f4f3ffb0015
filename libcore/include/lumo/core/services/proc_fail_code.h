// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <cstdint>

namespace lumo {

/// Why processing failed. Applications store the numbers, so they must not change.
enum class ProcFailCode : std::int32_t {
    None = 0, ///< it did not fail
    Unknown = 1,
    // 2 has no meaning any more and is not used again
    InitGcpcsToOutcs = 3, ///< no way from the control points' coordinate system to the output's
    InitInvalidOutcs = 4, ///< the output coordinate system is not usable
    InitInvalidInputs = 5,
    InitDisjointImgsGcps = 6, ///< images and control points lie apart
    InitOpenImage = 7,
    InitNormImageOpenRo = 8, ///< normalised image: opening for reading
    InitNormImageOpenRw = 9, ///< normalised image: opening for writing
    InitNormImageReadRect = 10,
    InitNormImageWrite = 11,
    InitThumbImageRead = 12,
    InitAltNotEnoughGeotags = 13, ///< alternative initialisation
    InitAltNoGeomMatch = 14,
    InitAltStart = 15,
    InitRelativePipelineProc = 16,
    InitNoCalibCameras = 17, ///< not one camera was calibrated
    InitRematch = 18,
    InitCalcOrthoArea = 19,
    InitCalcGsd = 20, ///< ground sampling distance
};

namespace text {

/// "FAIL_NONE", "FAIL_INIT_OPEN_IMAGE" and so on; "unknown" for a number
/// without a name, 2 among them.
[[nodiscard]] LUMO_CORE_EXPORT QString toString(const ProcFailCode& code);

} // namespace text
} // namespace lumo

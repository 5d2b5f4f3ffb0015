// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

/// How the picture in a file was made from the sensor's full picture.
enum class ImageMode : int {
    Unknown = 0, ///< several modes fit equally, or there is no evidence
    Native,      ///< pixel for pixel, and all of it
    Resized,     ///< scaled by the camera or by a program
    Cropped,     ///< a part of it, pixel for pixel
    Binned,      ///< blocks of pixels read as one
};

/// "unknown", "native", "resized", "cropped" or "binned".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(ImageMode mode);

} // namespace lumo

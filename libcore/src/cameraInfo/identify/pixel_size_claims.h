// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/image_identification.h"
#include "lumo/exif/camera_from_exif.h"

#include <QString>

#include <vector>

namespace lumo {

/// The pixel size by the database; 0 if the database has none.
struct KnownPixelSize
{
    PixelSizeOrigin from = PixelSizeOrigin::None;
    double pixelSizeMm = 0.0; ///< of the recorded picture
    QString model;            ///< that it follows from
};

/// The pixel size of the recorded picture, and what was claimed about it.
struct JudgedPixelSize
{
    PixelSizeOrigin from = PixelSizeOrigin::None; ///< None if there is no pixel size
    double pixelSizeMm = 0.0;
    double sigma = 0.0; ///< relative
    std::vector<PixelSizeClaim> claims;
};

/// Takes the database's pixel size, else the one combined from the evidence, and compares
/// each claim with it.
[[nodiscard]] JudgedPixelSize judgePixelSize(
    const KnownPixelSize& known, const std::vector<exif::PixelSizeEvidence>& evidence);

/// A line for each claim that is more than three standard deviations off.
[[nodiscard]] QStringList contradictions(const JudgedPixelSize& judged);

} // namespace lumo

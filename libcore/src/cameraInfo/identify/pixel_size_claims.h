// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/image_identification.h"
#include "lumo/exif/camera_from_exif.h"

#include <QString>

#include <vector>

namespace lumo {

/// A pixel size that the database tells; of size 0 if it tells none.
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

/// Takes what the database tells, else what the evidence yields together, and holds each
/// claim against it.
[[nodiscard]] JudgedPixelSize judgePixelSize(
    const KnownPixelSize& known, const std::vector<exif::PixelSizeEvidence>& evidence);

/// A line for each claim that is more than three standard deviations off.
[[nodiscard]] QStringList contradictions(const JudgedPixelSize& judged);

} // namespace lumo

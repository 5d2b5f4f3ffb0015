// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_db_data.h"

#include <QString>

#include <optional>

namespace lumo {

/// A pixel size taken over from another image size of the same camera.
struct PixelSizeEstimate
{
    double pixelSize = 0.0; ///< mm
    /// New size over stored size. 1: the image has the stored pixels, all of
    /// them or a crop that leaves one side whole.
    double scale = 1.0;
};

/// \param exifId  one identifier string; nothing unless it has ExifID's form
[[nodiscard]] std::optional<PixelSizeEstimate> estimatePixelSize(
    const cameradb::CameraDBData& internal, const cameradb::CameraDBData& user,
    const QString& exifId);

} // namespace lumo

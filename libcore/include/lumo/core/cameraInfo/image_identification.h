// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/export.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace lumo {

class CameraModelDb;

/// What a pixel size rests on.
enum class PixelSizeOrigin : int {
    None = 0,
    Database,    ///< the camera model found
    Estimated,   ///< another image size of the same camera in the database
    Calibration, ///< a calibration in the image's own metadata
    FocalPlane,  ///< the EXIF focal plane resolution
    SensorTable, ///< the table of sensor sizes
    Focal35mm,   ///< focal length against its 35 mm equivalent
};

/// "none", "database", "estimated", "calibration", "focalPlane", "sensorTable"
/// or "focal35mm".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(PixelSizeOrigin origin);

/// What is known of the camera of one image.
struct ImageIdentification
{
    /// The camera for the image as it is in the file. Without a pixel size it
    /// is incomplete but has what the metadata says.
    CameraData camera;
    QString modelName;                  ///< of the database's model; empty if none was found
    std::optional<CameraSource> source; ///< nothing if the camera is incomplete
    PixelSizeOrigin pixelSizeFrom = PixelSizeOrigin::None;
    /// The image as it is in the file, without the debug lines of a Sequoia's raw
    /// image; the recorded size where the file holds no picture.
    std::size_t width = 0;
    std::size_t height = 0;
    /// Why there is no pixel size; empty if there is one.
    QString reason;
};

/// Finds the camera of an image: the database's model, else what another image
/// size of the same camera and the image's metadata tell.
///
/// The model is that of the size which the camera recorded. Where the file holds
/// the same picture scaled to another size, the pixel size is the recorded one's
/// times recorded over own width; where the proportions differ, the picture is
/// taken for a crop and the pixel size is kept. Portrait images get the model
/// turned.
///
/// A single-band image of a Sequoia that is 970 rows high counts as one of 960
/// rows, in the file and as recorded: its first 8 and last 2 rows are no picture.
/// `recorded` itself keeps both heights.
[[nodiscard]] LUMO_CORE_EXPORT ImageIdentification
identifyImage(const ExifInfo& recorded, const CameraModelDb& database);

} // namespace lumo

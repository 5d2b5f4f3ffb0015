// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cameraInfo/identify/known_modes.h"
#include "lumo/core/cameraInfo/image_mode.h"
#include "lumo/exif/camera_from_exif.h"

#include <QString>

#include <vector>

namespace lumo {

/// The mode of a recorded picture, as it follows from the camera's known modes.
struct RecordedMode
{
    ImageMode mode = ImageMode::Unknown;
    double pixelSize = 0.0; ///< mm, of the recorded picture; 0 if it does not follow
    QString model;          ///< name of the database model used
    QString reason;         ///< the rule, in words; empty if the camera has no known modes
    QString caution;        ///< what makes the model doubtful; empty if nothing does
};

/// Whether cameras with other sensors share the image's model name.
[[nodiscard]] bool severalSensors(const KnownModes& modes, const ExifInfo& exif);

/// The mode of a size that the database lists, compared with the largest size of the
/// same sensor.
/// \param identifier  of the model, of ExifID's form
[[nodiscard]] RecordedMode modeOfModel(const KnownModes& modes, const QString& identifier);

/// The mode of a recorded size that the database may not list.
///
/// Cameras that share a name are distinguished by their focal length. If none has the
/// image's focal length and their sensors differ in width, the mode is Unknown.
/// Otherwise the first rule that applies gives the mode:
///  1. The database lists the size.
///  2. The size is a crop of a listed size and keeps one side.
///  3. The size is the largest size divided by a whole number: resized or binned. The
///     mode is Unknown, but the pixel size is the same for both.
///  4. The size has the proportions of the largest size: resized, or a crop within the
///     camera. The evidence must support one of the two.
/// \param evidence  from the metadata. The sensor table does not count, because it
///     assumes that every picture shows the whole sensor.
[[nodiscard]] RecordedMode findRecordedMode(
    const KnownModes& modes, const ExifInfo& exif,
    const std::vector<exif::PixelSizeEvidence>& evidence);

} // namespace lumo

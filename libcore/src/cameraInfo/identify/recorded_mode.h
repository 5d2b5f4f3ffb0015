// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cameraInfo/identify/known_modes.h"
#include "lumo/core/cameraInfo/image_mode.h"
#include "lumo/exif/camera_from_exif.h"

#include <QString>

#include <vector>

namespace lumo {

/// What the known modes of a camera say of the picture that it recorded.
struct RecordedMode
{
    ImageMode mode = ImageMode::Unknown;
    double pixelSize = 0.0; ///< mm, of the recorded picture; 0 if they do not tell
    QString model;          ///< the database's model that it follows from
    QString reason;         ///< the rule, in words; empty if the camera has no known modes
    QString caution;        ///< what makes the model doubtful; empty if nothing does
};

/// Whether cameras with other sensors share the image's model name.
[[nodiscard]] bool severalSensors(const KnownModes& modes, const ExifInfo& exif);

/// The mode of a size that the database lists, held against the largest one of
/// the same sensor.
/// \param identifier  of the model, of ExifID's form
[[nodiscard]] RecordedMode modeOfModel(const KnownModes& modes, const QString& identifier);

/// The mode of a recorded size that the database may not list.
///
/// Cameras that share a name are told apart by the focal length, else by the
/// width of their sensors: if these differ, nothing is said. The size itself is
/// looked for first, then a listed one of which it is a crop that keeps a side, then
/// scaling from the largest: by a whole number it is scaled or binned (Unknown, but the
/// pixel size is the same); otherwise it may also be a crop within the camera, which
/// then scales up or not, and the evidence must support one of the two.
/// \param evidence  of the metadata; the sensor table does not count, since it
///     takes all pictures for the whole sensor
[[nodiscard]] RecordedMode findRecordedMode(
    const KnownModes& modes, const ExifInfo& exif,
    const std::vector<exif::PixelSizeEvidence>& evidence);

} // namespace lumo

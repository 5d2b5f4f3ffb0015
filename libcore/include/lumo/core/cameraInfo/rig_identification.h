// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_source.h"
#include "lumo/core/cameraInfo/captures.h"
#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/core/export.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <optional>
#include <vector>

namespace lumo {

class CameraModelDb;

/// Makes a filter for rigs whose cameras are distinguished by detection strings,
/// from the metadata and file names of one capture.
///
/// EXIF string: the camera model's name in the database, else the image's
/// identifier. Bands: those that the metadata name. Detection string: the part
/// of the path (end or beginning of the file name, or folder) that a rig with that
/// EXIF string lists; empty if the metadata name the band or camera.
[[nodiscard]] LUMO_CORE_EXPORT rig_filter_t
makeCaptureFilter(const Capture& capture, const CameraModelDb& database);

/// The result of identifyRigs for one capture.
struct RigIdentification
{
    bool fits = false;
    /// The rig that fits, else the nearest one; empty if no rig has a camera of
    /// this kind. `source`, `cameraNames` and `assignment` describe this rig.
    QString rigName;
    std::optional<CameraSource> source;
    QStringList cameraNames; ///< by camera number
    /// Image i was taken by the rig's camera assignment[i], or by none of them (npos).
    std::vector<std::size_t> assignment;
    int score = -1; ///< of rigdb::matchRigDB; -1 if none fits
    bool serialMatched = false;
    /// Why no rig fits: "<rig>: <what does not fit>; ..." for each of the nearest
    /// rigs, nearest first.
    QStringList reasons;
};

/// Finds the rig of each capture; the results are in the order of the captures.
///
/// The result is the rig with the highest score. A rig whose cameras are
/// distinguished by their order (the order of the capture's images) must score
/// higher than all rigs with detection strings. Rigs that are not valid do not
/// count. Equal captures, such as those of one flight, are matched only once.
[[nodiscard]] LUMO_CORE_EXPORT std::vector<RigIdentification> identifyRigs(
    const std::vector<Capture>& captures, const CameraModelDb& database);

} // namespace lumo

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

/// What is known of each image's camera, as a filter for rigs whose cameras are
/// told apart by detection strings.
///
/// EXIF string: the camera model's name in the database, else the image's
/// identifier. Bands: those that the metadata name. Detection string: the part
/// of the file name (its end, its beginning, or its folder) that a rig with that
/// EXIF string lists; empty where the metadata name the band or camera.
[[nodiscard]] LUMO_CORE_EXPORT rig_filter_t
makeCaptureFilter(const Capture& capture, const CameraModelDb& database);

/// The rig of one capture.
struct RigIdentification
{
    bool fits = false;
    /// The rig that fits, else the nearest one; empty if no rig has a camera of
    /// this kind. The fields down to `assignment` are about it.
    QString rigName;
    std::optional<CameraSource> source;
    QStringList cameraNames; ///< by camera number
    /// Image i was taken by the rig's camera assignment[i], or by none of them (npos).
    std::vector<std::size_t> assignment;
    int score = -1; ///< of rigdb::matchRigDB; -1 if none fits
    bool serialMatched = false;
    /// Why none fits: "<rig>: <what does not fit>; ..." for each of the nearest
    /// rigs, nearest first.
    QStringList reasons;
};

/// The rig of each capture, in order: the best of those whose cameras are told
/// apart by detection strings or, if it has the higher score, of those told apart
/// by their order, which is that of the capture's images. Rigs that are not valid
/// do not count. Captures that are alike, as those of one flight are, are matched
/// once.
[[nodiscard]] LUMO_CORE_EXPORT std::vector<RigIdentification> identifyRigs(
    const std::vector<Capture>& captures, const CameraModelDb& database);

} // namespace lumo

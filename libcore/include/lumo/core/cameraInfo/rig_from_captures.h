// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/captures.h"
#include "lumo/core/cameraInfo/rig_model.h"
#include "lumo/core/export.h"

#include <QString>

#include <vector>

namespace lumo {

class CameraModelDb;

/// Makes a rig model from the metadata of images that the rig took.
///
/// The cameras are those of the captures with the most images, in the same order.
/// Their EXIF strings, serial numbers and bands come from makeCaptureFilter. If the
/// metadata name neither band nor camera, the end of the file name becomes the
/// detection string. The poses are the rotations in the metadata, or zero without
/// them, with the tolerance rig_relatives_t::kDefaultTolerance. The reference camera
/// is the one that the metadata name, else the first.
/// \param[out] rig    replaced on success, untouched on failure
/// \param[out] error  on failure why, else untouched: no capture of two images or
///     more, two cameras that cannot be distinguished, or captures that disagree
[[nodiscard]] LUMO_CORE_EXPORT bool makeRigFromCaptures(
    const std::vector<Capture>& captures, const CameraModelDb& database, const QString& name,
    RigModel& rig, QString& error);

} // namespace lumo

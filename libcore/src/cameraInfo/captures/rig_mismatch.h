// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/core/cameraInfo/rig_model.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

namespace lumo {

/// How far a rig is from fitting images that it does not fit.
struct RigMismatch
{
    /// The number of the rig's cameras that have an image of their own. For a rig whose
    /// cameras are distinguished by order: the number of images of any of its cameras.
    std::size_t fitting = 0;
    std::size_t missing = 0; ///< number of enabled cameras of the rig without an image
    /// The rig camera that each image would be from, or npos.
    std::vector<std::size_t> assignment;
    QString text; ///< "<rig>: <what does not fit>; ...", at least one thing
};

/// \param rig  a valid one that rigdb::matchRigDB has not found to fit
/// \param filter  of the rig's detection
/// \param fileNames  one for each camera of the filter
[[nodiscard]] RigMismatch explainMismatch(
    const RigModel& rig, const rig_filter_t& filter, const QStringList& fileNames);

/// The text for a rig camera in messages: its name, else its bands, else its number.
[[nodiscard]] QString rigCameraText(const RigModel& rig, std::size_t camera);

} // namespace lumo

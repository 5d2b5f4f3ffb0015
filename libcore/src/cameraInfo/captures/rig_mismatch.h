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
    /// Cameras of the rig that have an image of their own; of a rig told apart by
    /// order, images that are of some camera of it.
    std::size_t fitting = 0;
    std::size_t missing = 0; ///< enabled cameras of the rig without one
    /// The rig camera that each image would be from, or npos.
    std::vector<std::size_t> assignment;
    QString text; ///< "<rig>: <what does not fit>; ...", at least one thing
};

/// \param rig  a valid one that rigdb::matchRigDB has not found to fit
/// \param filter  of the rig's detection
/// \param fileNames  one for each camera of the filter
[[nodiscard]] RigMismatch explainMismatch(
    const RigModel& rig, const rig_filter_t& filter, const QStringList& fileNames);

/// What a rig camera is called: its name, else its bands, else its number.
[[nodiscard]] QString rigCameraText(const RigModel& rig, std::size_t camera);

} // namespace lumo

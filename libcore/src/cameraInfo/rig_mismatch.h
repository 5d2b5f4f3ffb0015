// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/core/cameraInfo/rig_model.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

namespace lumo {

/// How far a rig is from fitting images.
struct RigMismatch
{
    std::size_t fitting = 0; ///< cameras of the rig that have an image of their own
    std::size_t missing = 0; ///< cameras of the rig without one
    /// The rig camera that each image would be from, or npos.
    std::vector<std::size_t> assignment;
    QString text; ///< "<rig>: <what does not fit>; ..."
};

/// \param fileNames  one for each camera of the filter
[[nodiscard]] RigMismatch explainMismatch(
    const RigModel& rig, const rig_filter_t& filter, const QStringList& fileNames);

/// What a rig camera is called: its name, else its bands, else its number.
[[nodiscard]] QString rigCameraText(const RigModel& rig, std::size_t camera);

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/pipeline/export.h"

#include <QMetaType>
#include <QString>

#include <cstdint>

namespace lumo {

/// The steps of the processing pipeline, in the order in which a project runs them.
/// The numbers never change: a new step gets a new number.
enum class ProcessingStep : std::int32_t {
    None = -1, ///< no step is running

    // From images to calibrated cameras
    ImageImport = 0,
    MetadataReading = 1,
    KeypointExtraction = 2,
    KeypointMatching = 3,
    InitialOrientation = 4, ///< poses of the cameras relative to each other
    BundleAdjustment = 5,
    Georeferencing = 6,
    Rematching = 7, ///< further matches, found with the adjusted poses
    QualityReport = 8,

    // From calibrated cameras to points and surfaces
    ImageRectification = 9,
    PointCloudDensification = 10,
    PointCloudFiltering = 11,
    PointCloudClassification = 12,
    MeshReconstruction = 13,
    MeshTexturing = 14,

    // From points to maps
    SurfaceModel = 15,
    TerrainModel = 16,
    ContourLines = 17,
    Orthomosaic = 18,
    ReflectanceMap = 19,
    IndexMap = 20,
};

namespace text {

/// The step's name for use in a sentence, such as "bundle adjustment"; "none" for
/// ProcessingStep::None and "unknown" for any other number.
[[nodiscard]] LUMO_PIPELINE_EXPORT QString toString(const ProcessingStep& step);

} // namespace text
} // namespace lumo

// Queued signal connections need the type to be known to Qt.
Q_DECLARE_METATYPE(lumo::ProcessingStep)

// SPDX-License-Identifier: Apache-2.0
#include "lumo/pipeline/processing_step.h"

namespace lumo::text {
namespace {

struct NamedStep
{
    ProcessingStep step;
    const char* name;
};

// In the order of the enumeration. The texts are for sentences, so in lower case.
constexpr NamedStep kSteps[] = {
    {ProcessingStep::None, "none"},
    {ProcessingStep::ImageImport, "image import"},
    {ProcessingStep::MetadataReading, "metadata reading"},
    {ProcessingStep::KeypointExtraction, "keypoint extraction"},
    {ProcessingStep::KeypointMatching, "keypoint matching"},
    {ProcessingStep::InitialOrientation, "initial orientation"},
    {ProcessingStep::BundleAdjustment, "bundle adjustment"},
    {ProcessingStep::Georeferencing, "georeferencing"},
    {ProcessingStep::Rematching, "rematching"},
    {ProcessingStep::QualityReport, "quality report"},
    {ProcessingStep::ImageRectification, "image rectification"},
    {ProcessingStep::PointCloudDensification, "point cloud densification"},
    {ProcessingStep::PointCloudFiltering, "point cloud filtering"},
    {ProcessingStep::PointCloudClassification, "point cloud classification"},
    {ProcessingStep::MeshReconstruction, "mesh reconstruction"},
    {ProcessingStep::MeshTexturing, "mesh texturing"},
    {ProcessingStep::SurfaceModel, "surface model"},
    {ProcessingStep::TerrainModel, "terrain model"},
    {ProcessingStep::ContourLines, "contour lines"},
    {ProcessingStep::Orthomosaic, "orthomosaic"},
    {ProcessingStep::ReflectanceMap, "reflectance map"},
    {ProcessingStep::IndexMap, "index map"},
};

} // namespace

QString toString(const ProcessingStep& step)
{
    for (const NamedStep& known : kSteps) {
        if (known.step == step) {
            return QString::fromLatin1(known.name);
        }
    }
    return QStringLiteral("unknown"); // a number that a newer version may know
}

} // namespace lumo::text

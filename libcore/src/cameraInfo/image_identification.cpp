// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/image_identification.h"

#include "cameraInfo/pixel_size_estimate.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/specificSensor/sequoia.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/sequoia.h"

#include <algorithm>
#include <cmath>

namespace lumo {
namespace {

PixelSizeOrigin originOf(exif::PixelSizeSource source)
{
    switch (source) {
    case exif::PixelSizeSource::FocalPlane:
        return PixelSizeOrigin::FocalPlane;
    case exif::PixelSizeSource::SensorTable:
        return PixelSizeOrigin::SensorTable;
    case exif::PixelSizeSource::Focal35mm:
        return PixelSizeOrigin::Focal35mm;
    case exif::PixelSizeSource::Calibration:
        return PixelSizeOrigin::Calibration;
    case exif::PixelSizeSource::None:
        break;
    }
    return PixelSizeOrigin::None;
}

bool takeFromDatabase(
    const ExifInfo& exif, const CameraModelDb& database, ImageIdentification& result)
{
    CameraModelFromDB model;
    if (!database.findCameraModel(exif.exifId(), exif.serialNumber, model, false)) {
        return false;
    }
    const bool portrait = exif.imageWidth < exif.imageHeight;
    result.modelName = model.params.name;
    result.camera.setBands(exif.bands, false);
    copyCameraModelToParams(model, model.params.source, result.camera, npos);
    result.source = database.calcCameraSource(result.camera, exif);
    if (portrait != model.portraitImage()) {
        result.camera.params = result.camera.params.turned();
    }
    // The generic model serves every body; the image still knows its own.
    if (result.camera.serialNumber.isEmpty()) {
        result.camera.serialNumber = exif.serialNumber;
    }
    result.pixelSizeFrom = PixelSizeOrigin::Database;
    return true;
}

/// A stored size of the same camera that needs no scaling is better evidence
/// than metadata; one that does is the last resort.
void takeFromMetadata(
    const ExifInfo& exif, const CameraModelDb& database, ImageIdentification& result)
{
    exif::PixelSizeSource from = exif::PixelSizeSource::None;
    const bool complete = exif::getCamera(exif, result.camera, &from, result.reason);
    result.pixelSizeFrom = originOf(from);
    const auto estimate =
        estimatePixelSize(database.internalData(), database.userData(), exif.exifId().second);
    if (estimate && (!complete || estimate->scale == 1.0)) {
        result.camera = exif::makeCamera(exif, estimate->pixelSize);
        result.pixelSizeFrom = PixelSizeOrigin::Estimated;
        result.reason.clear();
    } else if (!complete) {
        result.camera = exif::makeCamera(exif, 0.0);
    }
    if (!result.camera.incomplete()) {
        result.source = database.calcCameraSource(result.camera, exif);
    }
}

/// Brings the camera from the recorded size to the size in the file.
void scaleToFile(const ExifInfo& exif, CameraParams& params)
{
    constexpr double kSameProportions = 0.02;
    const auto recordedWidth = static_cast<double>(exif.imageWidth);
    const auto recordedHeight = static_cast<double>(exif.imageHeight);
    const double xScale = recordedWidth / static_cast<double>(exif.fileWidth);
    const double yScale = recordedHeight / static_cast<double>(exif.fileHeight);
    if (std::abs(xScale / yScale - 1.0) > kSameProportions) {
        return;
    }
    params.setImageSize(exif.fileWidth, exif.fileHeight);
    params.pixelSize *= xScale;
    for (double* term :
         {&params.fisheye.c, &params.fisheye.d, &params.fisheye.e, &params.fisheye.f}) {
        *term /= xScale;
    }
}

/// The metadata that the picture would have without the debug lines of a Sequoia.
ExifInfo withoutDebugLines(const ExifInfo& exif)
{
    InputImage image(QString(), exif);
    if (!exif::sequoia::isSequoia(exif) || image.spectralKind() != SpectralKind::Multispectral) {
        return exif;
    }
    sequoia::fixImageDimensionsToRemoveDebugLines(image);
    ExifInfo result = image.exif();
    if (result.fileHeight == sequoia::kRawHeight) {
        result.fileHeight = sequoia::kUsableHeight;
    }
    return result;
}

} // namespace

QString toString(PixelSizeOrigin origin)
{
    switch (origin) {
    case PixelSizeOrigin::Database:
        return QStringLiteral("database");
    case PixelSizeOrigin::Estimated:
        return QStringLiteral("estimated");
    case PixelSizeOrigin::Calibration:
        return QStringLiteral("calibration");
    case PixelSizeOrigin::FocalPlane:
        return QStringLiteral("focalPlane");
    case PixelSizeOrigin::SensorTable:
        return QStringLiteral("sensorTable");
    case PixelSizeOrigin::Focal35mm:
        return QStringLiteral("focal35mm");
    case PixelSizeOrigin::None:
        break;
    }
    return QStringLiteral("none");
}

ImageIdentification identifyImage(const ExifInfo& recorded, const CameraModelDb& database)
{
    const ExifInfo exif = withoutDebugLines(recorded);
    ImageIdentification result;
    const bool holdsPicture = exif.fileWidth > 0 && exif.fileHeight > 0;
    result.width = holdsPicture ? exif.fileWidth : exif.imageWidth;
    result.height = holdsPicture ? exif.fileHeight : exif.imageHeight;
    if (!takeFromDatabase(exif, database, result)) {
        takeFromMetadata(exif, database, result);
    }
    if (holdsPicture && exif.imageWidth > 0 && exif.imageHeight > 0) {
        scaleToFile(exif, result.camera.params);
    }
    return result;
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"

#include "calibrated_lens.h"
#include "lumo/cameradata/camera_name.h"
#include "lumo/foundation/log.h"
#include "pixel_size_angle.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lumo {
namespace exif {
namespace {

QString cameraName(const ExifID& id)
{
    if (validCameraName(id.first)) {
        return id.first;
    }
    return validCameraName(id.second) ? id.second : QString();
}

CombinedPixelSize combined(const ExifInfo& exif)
{
    constexpr double kSaid = 3.0;
    const auto all = findPixelSizeEvidence(exif);
    const CombinedPixelSize result = combinePixelSizes(all);
    for (const PixelSizeEvidence& evidence : all) {
        const double off = result.pixelSizeMm > 0.0
                               ? sigmasApart(evidence, result.pixelSizeMm, result.sigmaWithoutDoubt)
                               : 0.0;
        if (off > kSaid || !evidence.doubt.isEmpty()) {
            log::info() << exif.make << exif.model << "pixel size" << evidence.pixelSizeMm * 1000.0
                        << "um of" << text::toString(evidence.source) << "is" << off << "sigma off"
                        << evidence.doubt;
        }
    }
    return result;
}

/// The polynomial over the recorded picture, in pixels from its upper left corner.
void setVignetting(const ExifInfo& exif, CameraParams& params)
{
    if (exif.vignetting.empty()) {
        return;
    }
    const auto width = static_cast<double>(exif.imageWidth);
    const auto height = static_cast<double>(exif.imageHeight);
    int xPower = 0;
    int yPower = 0;
    for (const VignettingTerm& term : exif.vignetting) {
        xPower = std::max(xPower, term.xPower);
        yPower = std::max(yPower, term.yPower);
    }
    Eigen::MatrixXd coefficients = Eigen::MatrixXd::Zero(yPower + 1, xPower + 1);
    for (const VignettingTerm& term : exif.vignetting) {
        coefficients(term.yPower, term.xPower) +=
            term.coefficient / (std::pow(width, term.xPower) * std::pow(height, term.yPower));
    }
    const int key = static_cast<int>(std::lround(exif.fNumber * 100.0));
    params.vignetting[key] = VignettingData(coefficients, 0.0, 0.0, VignettingType::Polynomial);
}

/// An equidistant lens: c pixels to 90 degrees from the axis.
void setFisheye(const ExifInfo& exif, CameraParams& params)
{
    params.lensType = LensType::Fisheye;
    if (params.pixelSize > 0.0 && exif.focalLengthMm > 0.0) {
        const double c = 0.5 * std::numbers::pi * exif.focalLengthMm / params.pixelSize;
        params.fisheye.setAffine(true, c, 0.0, 0.0, c);
    }
}

} // namespace

CameraData makeCamera(const ExifInfo& exif, double pixelSizeMm)
{
    CameraData camera;
    camera.params.name = cameraName(exif.exifId());
    camera.params.setImageSize(exif.imageWidth, exif.imageHeight);
    camera.params.pixelSize = pixelSizeMm;
    camera.params.setPrincipalPointPixel(
        {0.5 * static_cast<double>(exif.imageWidth), 0.5 * static_cast<double>(exif.imageHeight)});
    camera.params.perspective.focalLengthMm = exif.focalLengthMm;
    if (exif.spherical) {
        camera.params.lensType = LensType::Spherical;
    } else if (exif.focalLength35Mm > 0.0 && exif.focalLength35Mm < kWidestPerspective35Mm) {
        setFisheye(exif, camera.params);
    }
    camera.params.source = CameraSource::Exif;
    camera.params.lineReadoutTime = exif.lineReadoutTimeMs;
    setVignetting(exif, camera.params);
    if (exif.calibration && pixelSizeMm > 0.0 && !exif.spherical) {
        const QString refusal =
            applyCalibration(*exif.calibration, exif.focalLengthMm, camera.params);
        if (!refusal.isEmpty()) {
            log::warning() << exif.make << exif.model
                           << "the calibration in the image is not used:" << refusal;
        }
    }
    camera.setBands(exif.bands, false);
    camera.serialNumber = exif.serialNumber;
    camera.exifId = exif.exifId().first;
    return camera;
}

bool getCamera(const ExifInfo& exif, CameraData& camera, PixelSizeSource* from, QString& error)
{
    if (cameraName(exif.exifId()).isEmpty()) {
        error = QStringLiteral("the metadata name no camera");
        return false;
    }
    if (exif.imageWidth == 0 || exif.imageHeight == 0) {
        error = QStringLiteral("the metadata hold no image size");
        return false;
    }
    if (!(exif.focalLengthMm > 0.0)) {
        error = QStringLiteral("the metadata hold no focal length");
        return false;
    }
    const CombinedPixelSize evidence = combined(exif);
    if (evidence.from == PixelSizeSource::None) {
        error = QStringLiteral("the metadata yield no pixel size");
        return false;
    }
    camera = makeCamera(exif, evidence.pixelSizeMm);
    if (from != nullptr) {
        *from = evidence.from;
    }
    return true;
}

} // namespace exif

QString text::toString(exif::PixelSizeSource source)
{
    switch (source) {
    case exif::PixelSizeSource::FocalPlane:
        return QStringLiteral("focalPlane");
    case exif::PixelSizeSource::SensorTable:
        return QStringLiteral("sensorTable");
    case exif::PixelSizeSource::Focal35mm:
        return QStringLiteral("focal35mm");
    case exif::PixelSizeSource::Calibration:
        return QStringLiteral("calibration");
    case exif::PixelSizeSource::FieldOfView:
        return QStringLiteral("fieldOfView");
    case exif::PixelSizeSource::None:
        break;
    }
    return QStringLiteral("none");
}

} // namespace lumo

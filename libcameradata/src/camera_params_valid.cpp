// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_name.h"
#include "lumo/cameradata/camera_params.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <optional>

namespace lumo {
namespace {

bool allFinite(std::initializer_list<double> values)
{
    return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

// These functions return the first fault, if any. All conditions are written so
// that a NaN, which a file can contain, is a fault.

std::optional<QString> sensorFault(const CameraParams& params)
{
    if (!validCameraName(params.name)) {
        return params.name.isEmpty() ? QStringLiteral("The camera has no name")
                                     : QStringLiteral("The camera name is not allowed");
    }
    if (params.imageWidth == 0 || params.imageHeight == 0) {
        return QStringLiteral("The image size is 0");
    }
    if (!std::isfinite(params.pixelSize) || params.pixelSize <= 0.0) {
        return QStringLiteral("The pixel size is not positive");
    }
    if (!allFinite({params.principalPointXMm, params.principalPointYMm})) {
        return QStringLiteral("The principal point is not a number");
    }
    if (params.shutterModel < 0 || params.shutterModel > 4) {
        return QStringLiteral("The shutter model is unknown");
    }
    if (!allFinite({params.lineReadoutTime, params.velocityNumber})) {
        return QStringLiteral("The line read-out time is not a number");
    }
    return std::nullopt;
}

std::optional<QString> perspectiveFault(const PerspectiveParams& lens)
{
    if (!std::isfinite(lens.focalLengthMm) || lens.focalLengthMm <= 0.0) {
        return QStringLiteral("The focal length is not positive");
    }
    if (!allFinite(
            {lens.radialK1, lens.radialK2, lens.radialK3, lens.tangentialT1, lens.tangentialT2})) {
        return QStringLiteral("A distortion coefficient is not a number");
    }
    return std::nullopt;
}

std::optional<QString> fisheyeFault(const FisheyeParams& lens)
{
    if (lens.npoly < 1 || lens.npoly > 4) {
        return QStringLiteral("The degree of the fisheye polynomial is not 1 to 4");
    }
    if (!std::all_of(
            lens.poly.begin(), lens.poly.end(), [](double p) { return std::isfinite(p); })) {
        return QStringLiteral("A fisheye coefficient is not a number");
    }
    // 0 also if the affine part was never set.
    const double determinant = lens.c * lens.f - lens.d * lens.e;
    if (!std::isfinite(determinant) || determinant == 0.0) {
        return QStringLiteral("The affine part of the fisheye lens cannot be inverted");
    }
    return std::nullopt;
}

std::optional<QString> lensFault(const CameraParams& params)
{
    switch (params.lensType) {
    case LensType::Perspective:
        return perspectiveFault(params.perspective);
    case LensType::Fisheye:
        return fisheyeFault(params.fisheye);
    case LensType::Spherical:
        return std::nullopt;
    }
    return QStringLiteral("The lens type is unknown"); // a number from a file
}

std::optional<QString> tablesFault(const CameraParams& params)
{
    for (const auto& [type, range] : params.pixelValues) {
        if (!allFinite({range.min, range.max})) {
            return QStringLiteral("The pixel value range is invalid: a limit is not a number");
        }
        if (range.min > range.max) {
            return QStringLiteral("The pixel value range is invalid: minimum %1 exceeds maximum %2")
                .arg(range.min)
                .arg(range.max);
        }
    }
    for (const auto& [key, model] : params.vignetting) {
        if (!model.coefficients.allFinite()) {
            return QStringLiteral("A vignetting coefficient is not a number");
        }
    }
    return std::nullopt;
}

} // namespace

bool CameraParams::valid(QString& error, bool verbose) const
{
    std::optional<QString> fault = sensorFault(*this);
    if (!fault) {
        fault = lensFault(*this);
    }
    if (!fault) {
        fault = tablesFault(*this);
    }
    if (verbose && fault) {
        error = *fault;
    }
    return !fault;
}

} // namespace lumo

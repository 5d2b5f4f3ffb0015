// SPDX-License-Identifier: Apache-2.0
#include "calibrated_lens.h"

#include <algorithm>
#include <cmath>

namespace lumo::exif {
namespace {

constexpr double kFocalLengthFactor = 1.2;
constexpr double kMaxDecentring = 0.125; ///< parts of the longer side

/// Pixels per radian along the axis, the mean over all directions.
double fisheyeFocalLengthPx(const FisheyeParams& lens)
{
    const double thetaPerRadian = 2.0 / std::acos(-1.0);
    return thetaPerRadian * lens.poly[1] * std::sqrt(std::abs(lens.c * lens.f - lens.d * lens.e));
}

double focalLengthMm(const LensCalibration& calibration, const CameraParams& params)
{
    if (calibration.fisheye) {
        return params.pixel2mm(fisheyeFocalLengthPx(*calibration.fisheye));
    }
    return calibration.focalLengthMm > 0.0 ? calibration.focalLengthMm
                                           : params.pixel2mm(calibration.focalLengthPx);
}

/// \param params  in landscape
bool setPrincipalPoint(const LensCalibration& calibration, CameraParams& params)
{
    const double middleX = 0.5 * static_cast<double>(params.imageWidth);
    const double middleY = 0.5 * static_cast<double>(params.imageHeight);
    std::array<double, 2> offset = calibration.principalPointOffsetPx;
    if (calibration.principalPointMm) {
        offset = {
            params.mm2pixel((*calibration.principalPointMm)[0]) - middleX,
            params.mm2pixel((*calibration.principalPointMm)[1]) - middleY};
    }
    params.setPrincipalPointPixel({middleX + offset[0], middleY + offset[1]});
    return std::max(std::abs(offset[0]), std::abs(offset[1])) <= 2.0 * kMaxDecentring * middleX;
}

} // namespace

double comparableFocalLengthPx(const LensCalibration& calibration)
{
    if (calibration.nominalFocalLengthPx > 0.0) {
        return calibration.nominalFocalLengthPx;
    }
    return calibration.fisheye ? fisheyeFocalLengthPx(*calibration.fisheye)
                               : calibration.focalLengthPx;
}

QString applyCalibration(
    const LensCalibration& calibration, double exifFocalLengthMm, CameraParams& params)
{
    CameraParams result = params;
    const bool portrait = params.imageWidth < params.imageHeight;
    result.setImageSize(
        std::max(params.imageWidth, params.imageHeight),
        std::min(params.imageWidth, params.imageHeight));
    const double focalLength = focalLengthMm(calibration, result);
    const double ratio = focalLength / exifFocalLengthMm;
    if (exifFocalLengthMm > 0.0 && !(std::max(ratio, 1.0 / ratio) <= kFocalLengthFactor)) {
        return QStringLiteral("its focal length would be %1 mm, the lens has %2 mm")
            .arg(focalLength)
            .arg(exifFocalLengthMm);
    }
    if (!setPrincipalPoint(calibration, result)) {
        return QStringLiteral("its principal point is far from the image's middle");
    }
    if (calibration.fisheye) {
        result.lensType = LensType::Fisheye;
        result.fisheye = *calibration.fisheye;
    } else {
        PerspectiveParams& lens = result.perspective;
        lens.focalLengthMm = focalLength;
        lens.radialK1 = calibration.radial[0];
        lens.radialK2 = calibration.radial[1];
        lens.radialK3 = calibration.radial[2];
        lens.tangentialT1 = calibration.tangential[0];
        lens.tangentialT2 = calibration.tangential[1];
    }
    params = portrait ? result.turned() : result;
    return {};
}

} // namespace lumo::exif

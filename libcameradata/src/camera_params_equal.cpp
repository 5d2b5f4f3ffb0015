// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_params.h"
#include "lumo/cameradata/written_digits.h"

#include <algorithm>

namespace lumo {
namespace {

/// Equal when written with this many significant digits, so that parameters
/// equal themselves after a round trip through a file.
bool equalWritten(double a, double b, int digits)
{
    // The texts of 0 and -0 differ, the numbers do not.
    return a == b || QByteArray::number(a, 'g', digits) == QByteArray::number(b, 'g', digits);
}

bool equalLens(const PerspectiveParams& a, const PerspectiveParams& b)
{
    return equalWritten(a.focalLengthMm, b.focalLengthMm, writtendigits::kFocalLength) &&
           a.distortion == b.distortion &&
           equalWritten(a.radialK1, b.radialK1, writtendigits::kLens) &&
           equalWritten(a.radialK2, b.radialK2, writtendigits::kLens) &&
           equalWritten(a.radialK3, b.radialK3, writtendigits::kLens) &&
           equalWritten(a.tangentialT1, b.tangentialT1, writtendigits::kLens) &&
           equalWritten(a.tangentialT2, b.tangentialT2, writtendigits::kLens);
}

bool equalLens(const FisheyeParams& a, const FisheyeParams& b)
{
    const auto equalTerm = [](double x, double y) {
        return equalWritten(x, y, writtendigits::kLens);
    };
    return a.npoly == b.npoly && a.p0zero == b.p0zero && a.symmetricAffine == b.symmetricAffine &&
           std::equal(a.poly.begin(), a.poly.end(), b.poly.begin(), equalTerm) &&
           equalTerm(a.c, b.c) && equalTerm(a.d, b.d) && equalTerm(a.e, b.e) && equalTerm(a.f, b.f);
}

bool equalLensInUse(const CameraParams& a, const CameraParams& b)
{
    if (a.lensType != b.lensType) {
        return false;
    }
    if (a.lensType == LensType::Perspective) {
        return equalLens(a.perspective, b.perspective);
    }
    // Files store no lens parameters for the other types.
    return a.lensType != LensType::Fisheye || equalLens(a.fisheye, b.fisheye);
}

bool equalRange(
    const std::pair<const DataType, PixelValueRange>& a,
    const std::pair<const DataType, PixelValueRange>& b)
{
    return a.first == b.first && equalWritten(a.second.min, b.second.min, writtendigits::kValue) &&
           equalWritten(a.second.max, b.second.max, writtendigits::kValue);
}

bool equalVignetting(
    const std::pair<const int, VignettingData>& a, const std::pair<const int, VignettingData>& b)
{
    // Both have the same number of elements once the shapes are equal.
    const Eigen::MatrixXd& m = a.second.coefficients;
    const Eigen::MatrixXd& n = b.second.coefficients;
    return a.first == b.first && m.rows() == n.rows() && m.cols() == n.cols() &&
           std::equal(m.data(), m.data() + m.size(), n.data(), [](double x, double y) {
               return equalWritten(x, y, writtendigits::kVignetting);
           });
}

} // namespace

bool CameraParams::equal(const CameraParams& other, bool withVignetting) const
{
    return name == other.name && imageWidth == other.imageWidth &&
           imageHeight == other.imageHeight &&
           equalWritten(pixelSize, other.pixelSize, writtendigits::kSize) &&
           equalWritten(principalPointXMm, other.principalPointXMm, writtendigits::kSize) &&
           equalWritten(principalPointYMm, other.principalPointYMm, writtendigits::kSize) &&
           equalLensInUse(*this, other) && shutterModel == other.shutterModel &&
           equalWritten(lineReadoutTime, other.lineReadoutTime, writtendigits::kValue) &&
           equalWritten(velocityNumber, other.velocityNumber, writtendigits::kValue) &&
           std::equal(
               pixelValues.begin(), pixelValues.end(), other.pixelValues.begin(),
               other.pixelValues.end(), equalRange) &&
           (!withVignetting || std::equal(
                                   vignetting.begin(), vignetting.end(), other.vignetting.begin(),
                                   other.vignetting.end(), equalVignetting));
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#include "lens_calibration_reader.h"

#include "lumo/foundation/text.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumo::exif {
namespace {

constexpr const char* kDewarpData = "drone-dji:DewarpData";
constexpr const char* kModelType = "Camera:ModelType";
constexpr double kMaxNumber = 1e6;
constexpr double kAxisTolerance = 0.05;
constexpr double kSameFocalLength = 1.5;

/// Parses the properties of one file; nothing is a number that it has not checked.
class Properties
{
public:
    Properties(const XmpProperties& xmp, const TagReader& tags)
        : m_xmp(xmp)
        , m_tags(tags)
    {}

    [[nodiscard]] bool has(const char* property) const { return !m_xmp.text(property).isEmpty(); }

    [[nodiscard]] QString text(const char* property) const { return m_xmp.text(property); }

    /// One text "a, b, c", or a list of as many.
    [[nodiscard]] std::optional<std::vector<double>> numbers(
        const char* property, std::size_t fewest, std::size_t most) const
    {
        if (!has(property)) {
            warn(property, QStringLiteral("missing, the calibration is not used"));
            return std::nullopt;
        }
        return parse(property, m_xmp.values(property).join(QLatin1Char(',')), fewest, most);
    }

    [[nodiscard]] std::optional<double> positive(const char* property) const
    {
        const auto value = numbers(property, 1, 1);
        if (value && value->front() <= 0.0) {
            warn(property, QStringLiteral("%1 is not positive").arg(value->front()));
            return std::nullopt;
        }
        return value ? std::optional(value->front()) : std::nullopt;
    }

    [[nodiscard]] std::optional<std::vector<double>> parse(
        const char* property, const QString& text, std::size_t fewest, std::size_t most) const
    {
        std::vector<double> result;
        for (const QString& part : text.split(QLatin1Char(','))) {
            bool ok = false;
            const double number = text::fromString<double>(part.trimmed(), &ok);
            if (!ok || !(std::abs(number) <= kMaxNumber)) {
                warn(property, QStringLiteral("\"%1\" is no number to be used").arg(part));
                return std::nullopt;
            }
            result.push_back(number);
        }
        if (result.size() < fewest || result.size() > most) {
            warn(property, QStringLiteral("%1 numbers are too few or too many").arg(result.size()));
            return std::nullopt;
        }
        return result;
    }

    void warn(const char* property, const QString& reason) const
    {
        m_tags.warn(QLatin1String(property), reason);
    }

private:
    const XmpProperties& m_xmp;
    const TagReader& m_tags;
};

/// "2019-06-19;fx,fy,cx,cy,k1,k2,p1,p2,k3": the camera matrix of Bradski & Kaehler,
/// "Learning OpenCV", 2008, chapter 11, with cx and cy from the image's middle.
std::optional<LensCalibration> fromDewarpData(const Properties& properties)
{
    constexpr std::size_t kCount = 9;
    const QString list = properties.text(kDewarpData).section(QLatin1Char(';'), -1);
    const auto n = properties.parse(kDewarpData, list, kCount, kCount);
    if (!n) {
        return std::nullopt;
    }
    const double fx = (*n)[0];
    const double fy = (*n)[1];
    if (!(fx > 0.0 && fy > 0.0) || std::max(fx / fy, fy / fx) > 1.0 + kAxisTolerance) {
        properties.warn(
            kDewarpData,
            QStringLiteral("%1 and %2 are no focal lengths of a lens").arg(fx).arg(fy));
        return std::nullopt;
    }
    LensCalibration result;
    result.focalLengthPx = 0.5 * (fx + fy);
    result.principalPointOffsetPx = {(*n)[2], (*n)[3]};
    result.radial = {(*n)[4], (*n)[5], (*n)[8]};
    result.tangential = {(*n)[6], (*n)[7]};
    return result;
}

/// Early cameras write pixels and name no unit; others write millimetres and do
/// not always name them.
bool setFocalLength(const Properties& properties, double exifFocalLengthMm, LensCalibration& result)
{
    constexpr const char* kProperty = "Camera:PerspectiveFocalLength";
    constexpr const char* kUnit = "Camera:PerspectiveFocalLengthUnits";
    const auto length = properties.positive(kProperty);
    if (!length) {
        return false;
    }
    bool inMm = properties.text(kUnit) == QLatin1String("mm");
    if (!inMm && properties.has(kUnit)) {
        properties.warn(kUnit, QStringLiteral("\"%1\" is not mm").arg(properties.text(kUnit)));
        return false;
    }
    if (!inMm) {
        if (!(exifFocalLengthMm > 0.0)) {
            properties.warn(kProperty, QStringLiteral("its unit is not known"));
            return false;
        }
        const double ratio = *length / exifFocalLengthMm;
        inMm = std::max(ratio, 1.0 / ratio) < kSameFocalLength;
    }
    (inMm ? result.focalLengthMm : result.focalLengthPx) = *length;
    return true;
}

bool setPerspective(const Properties& properties, double exifFocalLengthMm, LensCalibration& result)
{
    const auto k = properties.numbers("Camera:PerspectiveDistortion", 5, 5);
    if (!k || !setFocalLength(properties, exifFocalLengthMm, result)) {
        return false;
    }
    result.radial = {(*k)[0], (*k)[1], (*k)[2]};
    result.tangential = {(*k)[3], (*k)[4]};
    return true;
}

bool setFisheye(const Properties& properties, LensCalibration& result)
{
    constexpr const char* kPolynomial = "Camera:FisheyePolynomial";
    constexpr const char* kMatrix = "Camera:FisheyeAffineMatrix";
    FisheyeParams lens;
    const auto polynomial = properties.numbers(kPolynomial, 2, lens.poly.size());
    const auto matrix = properties.numbers(kMatrix, 4, 4);
    if (!polynomial || !matrix) {
        return false;
    }
    if (!((*polynomial)[1] > 0.0)) {
        properties.warn(kPolynomial, QStringLiteral("does not grow from the axis"));
        return false;
    }
    const auto& m = *matrix;
    if (!(m[0] * m[3] - m[1] * m[2] > 0.0)) {
        properties.warn(kMatrix, QStringLiteral("its determinant is not positive"));
        return false;
    }
    lens.npoly = static_cast<int>(polynomial->size()) - 1;
    lens.poly.fill(0.0);
    std::copy(polynomial->begin(), polynomial->end(), lens.poly.begin());
    // A flag that contradicts the matrix must not change it.
    const bool symmetric = properties.text("Camera:FisheyeAffineSymmetric") == QLatin1String("1") &&
                           m[0] == m[3] && m[1] == 0.0 && m[2] == 0.0;
    lens.setAffine(symmetric, m[0], m[1], m[2], m[3]);
    result.fisheye = lens;
    return true;
}

bool statesLens(const Properties& properties)
{
    constexpr std::array kParts = {
        kModelType, "Camera:PrincipalPoint", "Camera:PerspectiveFocalLength",
        "Camera:PerspectiveDistortion", "Camera:FisheyePolynomial"};
    return std::any_of(kParts.begin(), kParts.end(), [&properties](const char* property) {
        return properties.has(property);
    });
}

std::optional<LensCalibration> fromModelType(const Properties& properties, double exifFocalLengthMm)
{
    const QString type = properties.text(kModelType);
    const bool fisheye = type == QLatin1String("fisheye");
    if (!fisheye && type != QLatin1String("perspective")) {
        properties.warn(kModelType, QStringLiteral("\"%1\" is no known lens").arg(type));
        return std::nullopt;
    }
    LensCalibration result;
    const auto point = properties.numbers("Camera:PrincipalPoint", 2, 2);
    const bool whole = point && (fisheye ? setFisheye(properties, result)
                                         : setPerspective(properties, exifFocalLengthMm, result));
    if (!whole) {
        return std::nullopt;
    }
    result.principalPointMm = {(*point)[0], (*point)[1]};
    return result;
}

/// The focal length of the camera's design, pixels; 0 if it is not stated, which
/// cameras that do not know it write as 0.
double nominalFocalLengthPx(const Properties& properties)
{
    constexpr const char* kProperty = "drone-dji:CalibratedFocalLength";
    if (!properties.has(kProperty)) {
        return 0.0;
    }
    const auto length = properties.numbers(kProperty, 1, 1);
    return length && length->front() != 0.0 ? properties.positive(kProperty).value_or(0.0) : 0.0;
}

std::optional<LensCalibration> fromNominal(
    const Properties& properties, double nominal, const ExifInfo& exif)
{
    if (nominal == 0.0) {
        return std::nullopt;
    }
    const auto x = properties.positive("drone-dji:CalibratedOpticalCenterX");
    const auto y = properties.positive("drone-dji:CalibratedOpticalCenterY");
    if (!x || !y) {
        return std::nullopt;
    }
    const auto [shortSide, longSide] = std::minmax(exif.imageWidth, exif.imageHeight);
    LensCalibration result;
    result.focalLengthPx = nominal;
    result.principalPointOffsetPx = {
        *x - 0.5 * static_cast<double>(longSide), *y - 0.5 * static_cast<double>(shortSide)};
    return result;
}

/// Takes the distortion out of the calibration of an image whose distortion the
/// camera has removed; false if it is not known whether it has.
bool heedDewarping(const Properties& properties, LensCalibration& result)
{
    constexpr const char* kFlag = "drone-dji:DewarpFlag";
    const QString flag = properties.text(kFlag);
    if (flag.isEmpty() || flag == QLatin1String("0")) {
        return true;
    }
    if (flag != QLatin1String("1") || result.fisheye) {
        properties.warn(
            kFlag,
            QStringLiteral("\"%1\" is not understood, the calibration is not used").arg(flag));
        return false;
    }
    result.radial = {0.0, 0.0, 0.0};
    result.tangential = {0.0, 0.0};
    return true;
}

} // namespace

std::optional<LensCalibration> findLensCalibration(
    const XmpProperties& xmp, const TagReader& tags, const ExifInfo& exif)
{
    const Properties properties(xmp, tags);
    const double nominal = nominalFocalLengthPx(properties);
    // Some cameras repeat the dewarping data as Camera: properties, but with the
    // focal length of the design, which the distortion does not belong to.
    std::optional<LensCalibration> result;
    if (properties.has(kDewarpData)) {
        result = fromDewarpData(properties);
    } else if (statesLens(properties)) {
        result = fromModelType(properties, exif.focalLengthMm);
    } else {
        result = fromNominal(properties, nominal, exif);
    }
    if (!result || !heedDewarping(properties, *result)) {
        return std::nullopt;
    }
    result->nominalFocalLengthPx = nominal;
    return result;
}

} // namespace lumo::exif

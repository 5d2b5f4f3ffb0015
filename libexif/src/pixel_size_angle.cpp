// SPDX-License-Identifier: Apache-2.0
#include "pixel_size_angle.h"

#include "relative_error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace lumo::exif {
namespace {

constexpr double kWrongShare = 0.05;
constexpr double kWrongShareWide = 0.08; // of pictures wider than 16:10
constexpr double kWiderThan = 1.6;
const double kFrameDiagonalMm = std::hypot(36.0, 24.0);

double longSide(const ExifInfo& exif)
{
    return static_cast<double>(std::max(exif.imageWidth, exif.imageHeight));
}

double shortSide(const ExifInfo& exif)
{
    return static_cast<double>(std::min(exif.imageWidth, exif.imageHeight));
}

void addFocalLengthRounding(const ExifInfo& exif, RelativeError& error)
{
    error.add(
        roundingSigma(roundingStep(exif.focalLengthMm)) / exif.focalLengthMm,
        QStringLiteral("focal length rounded"));
}

/// A size of sensor that many cameras share, whose makers multiply by a round factor.
struct SensorClass
{
    double factor;     ///< as makers state it
    double trueFactor; ///< of the diagonals
    double sigma;
    double proportions;
};

/// Known by the factor between the lengths; null if none is.
const SensorClass* findSensorClass(const ExifInfo& exif)
{
    constexpr double kShortestMm = 7.0; // below, rounding makes any factor of these
    constexpr double kRounded = 0.6;    // some makers cut off in place of rounding
    constexpr double kSameShape = 0.02;
    static constexpr std::array<SensorClass, 3> kClasses = {
        {{1.0, 1.002, 0.008, 3.0 / 2.0}, // 35.6 to 36 mm wide
         {1.5, 1.535, 0.012, 3.0 / 2.0}, // 23.1 to 23.7 mm wide
         {2.0, 2.0, 0.008, 4.0 / 3.0}}}; // 17.3 mm x 13 mm
    const double shape = longSide(exif) / shortSide(exif);
    for (const SensorClass& each : kClasses) {
        const double difference = exif.focalLength35Mm - each.factor * exif.focalLengthMm;
        if (exif.focalLengthMm >= kShortestMm && std::abs(difference) <= kRounded &&
            std::abs(shape / each.proportions - 1.0) <= kSameShape) {
            return &each;
        }
    }
    return nullptr;
}

/// Makers count by the diagonal of the picture, or of the whole 4:3 sensor that a wider
/// picture is cut from. Half the difference of the two is the uncertainty.
void addConventions(const ExifInfo& exif, double& diagonalPixels, RelativeError& error)
{
    const double whole = longSide(exif) * 5.0 / 4.0;
    if (longSide(exif) / shortSide(exif) > kWiderThan) {
        const double half = 0.5 * std::log(whole / diagonalPixels);
        diagonalPixels *= std::exp(half);
        error.add(half, QStringLiteral("two ways to count for wide pictures"));
    }
}

PixelSizeEvidence ofSensorClass(const ExifInfo& exif, const SensorClass& sensor)
{
    const double diagonal = kFrameDiagonalMm / sensor.trueFactor;
    const double pixels = std::hypot(longSide(exif), shortSide(exif));
    PixelSizeEvidence evidence;
    evidence.pixelSizeMm = diagonal / pixels;
    evidence.sigma = sensor.sigma;
    evidence.formula = QStringLiteral("the factor %1 means a diagonal of %2 mm, over %3 pixels")
                           .arg(sensor.factor)
                           .arg(diagonal, 0, 'f', 2)
                           .arg(pixels, 0, 'f', 0);
    evidence.reason = QStringLiteral("sensors of this class differ %1 %").arg(100.0 * sensor.sigma);
    return evidence;
}

} // namespace

std::optional<PixelSizeEvidence> pixelSizeOfEquivalent(const ExifInfo& exif)
{
    if (!(exif.focalLengthMm > 0.0 && exif.focalLength35Mm > 0.0) || exif.spherical) {
        return std::nullopt;
    }
    PixelSizeEvidence evidence;
    if (const SensorClass* sensor = findSensorClass(exif)) {
        evidence = ofSensorClass(exif, *sensor);
    } else {
        constexpr double kNominal = 0.022;
        constexpr double kBendsBelow = 18.0;
        RelativeError error;
        error.add(kNominal, QStringLiteral("the maker's factor is nominal"));
        error.add(roundingSigma(1.0) / exif.focalLength35Mm, QStringLiteral("equivalent rounded"));
        addFocalLengthRounding(exif, error);
        if (exif.focalLength35Mm < kBendsBelow) {
            error.add(0.06, QStringLiteral("so wide a lens bends lines"));
        }
        double pixels = std::hypot(longSide(exif), shortSide(exif));
        addConventions(exif, pixels, error);
        evidence.pixelSizeMm =
            kFrameDiagonalMm * exif.focalLengthMm / exif.focalLength35Mm / pixels;
        evidence.sigma = error.sigma();
        evidence.formula = QStringLiteral("43.27 mm x %1 mm / %2 mm over %3 pixels")
                               .arg(exif.focalLengthMm, 0, 'g', 4)
                               .arg(exif.focalLength35Mm, 0, 'g', 4)
                               .arg(pixels, 0, 'f', 0);
        evidence.reason = error.reason();
    }
    evidence.source = PixelSizeSource::Focal35mm;
    evidence.wrongShare =
        longSide(exif) > kWiderThan * shortSide(exif) ? kWrongShareWide : kWrongShare;
    if (exif.focalLength35Mm < kWidestPerspective35Mm) {
        evidence.doubt = QStringLiteral("only a fisheye lens is as wide");
    }
    return evidence;
}

std::optional<PixelSizeEvidence> pixelSizeOfFieldOfView(const ExifInfo& exif)
{
    constexpr double kDegree = std::numbers::pi / 180.0;
    constexpr double kWide = 100.0;
    if (!(exif.focalLengthMm > 0.0) || !(exif.spherical || exif.fieldOfView)) {
        return std::nullopt;
    }
    PixelSizeEvidence evidence{PixelSizeSource::FieldOfView};
    evidence.wrongShare = kWrongShare;
    RelativeError error;
    if (exif.spherical) {
        evidence.pixelSizeMm = 2.0 * std::numbers::pi * exif.focalLengthMm / longSide(exif);
        evidence.sigma = error.add(0.001, {}).sigma();
        evidence.formula = QStringLiteral("a full circle of radius %1 mm over %2 pixels")
                               .arg(exif.focalLengthMm)
                               .arg(longSide(exif));
        evidence.reason = QStringLiteral("by the projection");
        return evidence;
    }
    const FieldOfView& stated = *exif.fieldOfView;
    const bool hasDiagonal = stated.diagonalDeg > 0.0;
    const double angle = stated.horizontalDeg > 0.0 ? stated.horizontalDeg
                         : hasDiagonal              ? stated.diagonalDeg
                                                    : stated.verticalDeg;
    const double pixels = stated.horizontalDeg > 0.0 ? longSide(exif)
                          : hasDiagonal              ? std::hypot(longSide(exif), shortSide(exif))
                                                     : shortSide(exif);
    evidence.pixelSizeMm = 2.0 * exif.focalLengthMm * std::tan(0.5 * angle * kDegree) / pixels;
    error.add(angle > kWide ? 0.06 : 0.02, QStringLiteral("nominal angle"));
    addFocalLengthRounding(exif, error);
    evidence.sigma = error.sigma();
    evidence.reason = error.reason();
    evidence.formula = QStringLiteral("2 x %1 mm x tan(%2 deg / 2) over %3 pixels")
                           .arg(exif.focalLengthMm, 0, 'g', 4)
                           .arg(angle, 0, 'g', 5)
                           .arg(pixels, 0, 'f', 0);
    return evidence;
}

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#include "calibrated_lens.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/sensor_size_table.h"
#include "pixel_size_angle.h"
#include "relative_error.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace lumo::exif {
namespace {

constexpr double kMinSensorMm = 1.0;
constexpr double kMaxSensorMm = 70.0;
constexpr double kAxisTolerance = 0.05;
constexpr double kShapeTolerance = 0.02;

double longSide(const ExifInfo& exif)
{
    return static_cast<double>(std::max(exif.imageWidth, exif.imageHeight));
}

double shortSide(const ExifInfo& exif)
{
    return static_cast<double>(std::min(exif.imageWidth, exif.imageHeight));
}

bool plausibleSensor(double sideMm)
{
    return sideMm >= kMinSensorMm && sideMm <= kMaxSensorMm;
}

/// How far two positive numbers are apart, as a factor of at least 1.
double factor(double a, double b)
{
    return std::max(a / b, b / a);
}

/// Some thermal cameras write the sensor's sides in place of the resolution.
bool statesSensorSides(const ExifInfo& exif, const FocalPlaneResolution& resolution)
{
    constexpr double kSameProportions = 0.01;
    const double byX = resolution.x / static_cast<double>(exif.imageWidth);
    const double byY = resolution.y / static_cast<double>(exif.imageHeight);
    return factor(resolution.x, resolution.y) > 1.0 + kAxisTolerance &&
           factor(byX, byY) < 1.0 + kSameProportions &&
           plausibleSensor(std::max(resolution.x, resolution.y));
}

PixelSizeEvidence fromFocalPlane(const ExifInfo& exif, const FocalPlaneResolution& resolution)
{
    PixelSizeEvidence evidence{PixelSizeSource::FocalPlane};
    if (statesSensorSides(exif, resolution)) {
        evidence.pixelSizeMm = 0.5 * (resolution.x / static_cast<double>(exif.imageWidth) +
                                      resolution.y / static_cast<double>(exif.imageHeight));
        evidence.formula = QStringLiteral("a sensor of %1 mm x %2 mm over %3 x %4 pixels")
                               .arg(resolution.x)
                               .arg(resolution.y)
                               .arg(exif.imageWidth)
                               .arg(exif.imageHeight);
        return evidence;
    }
    const double mean = 0.5 * (resolution.x + resolution.y);
    evidence.pixelSizeMm = 1.0 / mean;
    evidence.formula =
        QStringLiteral("1 / %1 pixels per mm of the focal plane").arg(mean, 0, 'g', 6);
    if (factor(resolution.x, resolution.y) > 1.0 + kAxisTolerance) {
        evidence.doubt = QStringLiteral("x and y differ");
    }
    return evidence;
}

/// The resolution or the diagonal of the focal plane: one origin, so they count once.
std::optional<PixelSizeEvidence> focalPlaneEvidence(const ExifInfo& exif)
{
    constexpr double kWrongShare = 0.06;      // some cameras and many programs
    constexpr double kWrongShareEdited = 0.3; // programs that scale keep the old value
    std::optional<PixelSizeEvidence> evidence;
    if (exif.focalPlane && exif.focalPlane->x > 0.0 && exif.focalPlane->y > 0.0) {
        evidence = fromFocalPlane(exif, *exif.focalPlane);
    } else if (exif.sensorDiagonalMm > 0.0) {
        const double pixels = std::hypot(longSide(exif), shortSide(exif));
        evidence = PixelSizeEvidence{PixelSizeSource::FocalPlane, exif.sensorDiagonalMm / pixels};
        evidence->formula = QStringLiteral("a focal plane's diagonal of %1 mm over %2 pixels")
                                .arg(exif.sensorDiagonalMm)
                                .arg(pixels, 0, 'f', 0);
    }
    if (!evidence) {
        return std::nullopt;
    }
    // Canon's tags include the margin of the sensor: up to 3 % more than is recorded.
    const bool hasMargin = exif.make.startsWith(QLatin1String("Canon"), Qt::CaseInsensitive);
    RelativeError error;
    error.add(
        hasMargin ? 0.02 : 0.01, hasMargin ? QStringLiteral("tag of the sensor with its margin")
                                           : QStringLiteral("tag of the nominal sensor"));
    evidence->sigma = error.sigma();
    evidence->reason = error.reason();
    evidence->wrongShare = isEdited(exif) ? kWrongShareEdited : kWrongShare;
    return evidence;
}

/// Cameras crop to wider pictures or to squares; a picture that is narrower comes from
/// another camera of the product, or was cut later.
bool narrowerThan(const SensorSize& sensor, const ExifInfo& exif)
{
    return sensor.heightMm > 0.0 && exif.imageWidth != exif.imageHeight &&
           longSide(exif) / shortSide(exif) <
               sensor.widthMm / sensor.heightMm * (1.0 - kShapeTolerance);
}

/// How often the table's sensor is not that of the picture.
double wrongShareOfTable(const ExifInfo& exif, const SensorSize& sensor)
{
    constexpr double kThermalPixels = 1024.0 * 768.0;
    const double shape = longSide(exif) / shortSide(exif);
    const bool isDetector = longSide(exif) * shortSide(exif) <= kThermalPixels &&
                            std::abs(shape - 1.25) < kShapeTolerance;
    if (isDetector || exif.thermalWidth > 0) {
        return 0.8; // of a product with several cameras the table knows the colour one
    }
    if (exif.bandsNamed || narrowerThan(sensor, exif)) {
        return 0.3;
    }
    const bool isWhole =
        sensor.heightMm == 0.0 ||
        std::abs(shape / (sensor.widthMm / sensor.heightMm) - 1.0) <= kShapeTolerance;
    return isWhole ? 0.04 : 0.06;
}

std::optional<PixelSizeEvidence> tableEvidence(const ExifInfo& exif)
{
    const auto sensor = findSensorSize(exif.make, exif.model);
    if (!sensor) {
        return std::nullopt;
    }
    const bool hasHeight = sensor->heightMm > 0.0;
    const double byWidth = sensor->widthMm / longSide(exif);
    const double byHeight = sensor->heightMm / shortSide(exif);
    PixelSizeEvidence evidence{
        PixelSizeSource::SensorTable, hasHeight ? std::min(byWidth, byHeight) : byWidth};
    RelativeError error;
    error.add(
        hasHeight ? 0.01 : 0.02, hasHeight ? QStringLiteral("nominal sensor")
                                           : QStringLiteral("nominal sensor, one side known"));
    error.add(
        roundingSigma(roundingStep(sensor->widthMm)) / sensor->widthMm, QStringLiteral("rounded"));
    evidence.sigma = error.sigma();
    evidence.reason = error.reason();
    evidence.formula = hasHeight ? QStringLiteral("a sensor of %1 mm x %2 mm over %3 x %4 pixels")
                                       .arg(sensor->widthMm)
                                       .arg(sensor->heightMm)
                                       .arg(longSide(exif))
                                       .arg(shortSide(exif))
                                 : QStringLiteral("a sensor of %1 mm over %2 pixels")
                                       .arg(sensor->widthMm)
                                       .arg(longSide(exif));
    evidence.wrongShare = wrongShareOfTable(exif, *sensor);
    return evidence;
}

std::optional<PixelSizeEvidence> calibrationEvidence(const ExifInfo& exif)
{
    constexpr double kWrongShare = 0.03;
    const double focalLengthPx = exif.calibration ? comparableFocalLengthPx(*exif.calibration) : 0;
    if (!(exif.focalLengthMm > 0.0 && focalLengthPx > 0.0)) {
        return std::nullopt;
    }
    const bool isDesign = exif.calibration->nominalFocalLengthPx > 0.0;
    PixelSizeEvidence evidence{PixelSizeSource::Calibration, exif.focalLengthMm / focalLengthPx};
    RelativeError error;
    error.add(
        isDesign ? 0.01 : 0.02, isDesign ? QStringLiteral("nominal focal length")
                                         : QStringLiteral("lenses differ from their design"));
    error.add(
        roundingSigma(roundingStep(exif.focalLengthMm)) / exif.focalLengthMm,
        QStringLiteral("focal length rounded"));
    evidence.sigma = error.sigma();
    evidence.reason = error.reason();
    evidence.wrongShare = kWrongShare;
    evidence.formula = QStringLiteral("%1 mm / %2 pixels calibrated")
                           .arg(exif.focalLengthMm, 0, 'g', 4)
                           .arg(focalLengthPx, 0, 'f', 1);
    return evidence;
}

/// A zoom that brings the sensor's pixel size to that of the equivalent: the picture is the
/// middle of the sensor, with more pixels than that has.
void divideByZoom(
    const ExifInfo& exif, const std::optional<PixelSizeEvidence>& equivalent,
    std::optional<PixelSizeEvidence>& ofSensor)
{
    constexpr double kZoomed = 1.01;
    if (!equivalent || !ofSensor || !(exif.digitalZoom > kZoomed)) {
        return;
    }
    const double whole = factor(ofSensor->pixelSizeMm, equivalent->pixelSizeMm);
    const double zoomed = factor(ofSensor->pixelSizeMm / exif.digitalZoom, equivalent->pixelSizeMm);
    if (zoomed < whole) {
        ofSensor->pixelSizeMm /= exif.digitalZoom;
        ofSensor->formula += QStringLiteral(", over the digital zoom of %1").arg(exif.digitalZoom);
    }
}

} // namespace

std::vector<PixelSizeEvidence> findPixelSizeEvidence(const ExifInfo& exif)
{
    if (exif.imageWidth == 0 || exif.imageHeight == 0) {
        return {};
    }
    const auto equivalent = pixelSizeOfEquivalent(exif);
    auto plane = focalPlaneEvidence(exif);
    auto table = exif.spherical ? std::nullopt : tableEvidence(exif);
    divideByZoom(exif, equivalent, plane);
    divideByZoom(exif, equivalent, table);
    std::vector<PixelSizeEvidence> result;
    for (auto evidence :
         {table, plane, calibrationEvidence(exif), pixelSizeOfFieldOfView(exif), equivalent}) {
        if (!evidence) {
            continue;
        }
        const double sideMm = evidence->pixelSizeMm * longSide(exif);
        if (evidence->doubt.isEmpty() && !exif.spherical && !plausibleSensor(sideMm)) {
            evidence->doubt = QStringLiteral("the sensor would be %1 mm long").arg(sideMm);
        }
        result.push_back(*evidence);
    }
    return result;
}

} // namespace lumo::exif

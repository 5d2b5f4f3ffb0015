// SPDX-License-Identifier: Apache-2.0
#include "calibrated_lens.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/sensor_size_table.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace lumo::exif {
namespace {

constexpr double kMinSensorMm = 1.0;
constexpr double kMaxSensorMm = 70.0;
constexpr double kAxisTolerance = 0.05;
constexpr double kProportionTolerance = 0.01;
constexpr double kShapeTolerance = 0.02;
constexpr double kTableFactor = 1.2;
constexpr double kRoundedFactor = 1.05;
constexpr double kEquivalentFactor = 1.5;
constexpr double kOtherCameraFactor = 1.15;
constexpr double kWidestPerspective35Mm = 9.0;

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

QString doubtOfLength(double sideMm)
{
    return plausibleSensor(sideMm) ? QString()
                                   : QStringLiteral("the sensor would be %1 mm long").arg(sideMm);
}

/// How far two positive numbers are apart, as a factor of at least 1.
double factor(double a, double b)
{
    return std::max(a / b, b / a);
}

PixelSizeEvidence fromFocalPlane(const ExifInfo& exif, const FocalPlaneResolution& resolution)
{
    const double mean = 0.5 * (resolution.x + resolution.y);
    PixelSizeEvidence evidence{PixelSizeSource::FocalPlane, 1.0 / mean, {}};
    if (factor(resolution.x, resolution.y) > 1.0 + kAxisTolerance) {
        const double ifSensorX = resolution.x / static_cast<double>(exif.imageWidth);
        const double ifSensorY = resolution.y / static_cast<double>(exif.imageHeight);
        if (factor(ifSensorX, ifSensorY) < 1.0 + kProportionTolerance &&
            plausibleSensor(std::max(resolution.x, resolution.y))) {
            evidence.pixelSizeMm = 0.5 * (ifSensorX + ifSensorY);
        } else {
            evidence.doubt = QStringLiteral("x and y differ");
        }
    } else {
        evidence.doubt = doubtOfLength(longSide(exif) / mean);
    }
    return evidence;
}

PixelSizeEvidence fromSensor(const ExifInfo& exif, const SensorSize& sensor)
{
    const double byWidth = sensor.widthMm / longSide(exif);
    const double byHeight = sensor.heightMm / shortSide(exif);
    return {
        PixelSizeSource::SensorTable,
        sensor.heightMm > 0.0 ? std::min(byWidth, byHeight) : byWidth,
        {}};
}

std::optional<PixelSizeEvidence> from35mm(const ExifInfo& exif)
{
    if (!(exif.focalLengthMm > 0.0 && exif.focalLength35Mm > 0.0)) {
        return std::nullopt;
    }
    const double frameDiagonalMm = std::hypot(36.0, 24.0);
    const double diagonalMm = frameDiagonalMm * exif.focalLengthMm / exif.focalLength35Mm;
    const double pixelSize = diagonalMm / std::hypot(longSide(exif), shortSide(exif));
    PixelSizeEvidence evidence{
        PixelSizeSource::Focal35mm, pixelSize, doubtOfLength(pixelSize * longSide(exif))};
    if (exif.focalLength35Mm < kWidestPerspective35Mm) {
        evidence.doubt = QStringLiteral("only a fisheye lens is as wide");
    }
    return evidence;
}

std::optional<PixelSizeEvidence> fromCalibration(const ExifInfo& exif)
{
    const double focalLengthPx = exif.calibration ? comparableFocalLengthPx(*exif.calibration) : 0;
    if (!(exif.focalLengthMm > 0.0 && focalLengthPx > 0.0)) {
        return std::nullopt;
    }
    const double pixelSize = exif.focalLengthMm / focalLengthPx;
    return PixelSizeEvidence{
        PixelSizeSource::Calibration, pixelSize, doubtOfLength(pixelSize * longSide(exif))};
}

bool usable(const std::optional<PixelSizeEvidence>& evidence)
{
    return evidence && evidence->doubt.isEmpty();
}

bool contradicts(
    const std::optional<PixelSizeEvidence>& a, const std::optional<PixelSizeEvidence>& b,
    double tolerated)
{
    return usable(a) && usable(b) && factor(a->pixelSizeMm, b->pixelSizeMm) > tolerated;
}

/// A square image is a crop whose 35 mm equivalent is that of the whole frame.
bool narrowerThan(const SensorSize& sensor, const ExifInfo& exif)
{
    return sensor.heightMm > 0.0 && exif.imageWidth != exif.imageHeight &&
           longSide(exif) / shortSide(exif) <
               sensor.widthMm / sensor.heightMm * (1.0 - kShapeTolerance);
}

/// Both are believed, and are near each other.
bool supports(
    const std::optional<PixelSizeEvidence>& a, const std::optional<PixelSizeEvidence>& b,
    double tolerated)
{
    return usable(a) && usable(b) && !contradicts(a, b, tolerated);
}

/// The sources in the order of trust.
struct Sources
{
    std::optional<PixelSizeEvidence> plane;
    std::optional<PixelSizeEvidence> calibration;
    std::optional<PixelSizeEvidence> table;
    std::optional<PixelSizeEvidence> equivalent;
};

/// Why the focal plane resolution is not believed beside the other sources.
QString doubtOfFocalPlane(const Sources& s)
{
    if (!usable(s.plane)) {
        return s.plane ? s.plane->doubt : QString();
    }
    if (usable(s.table)) {
        const bool supported = supports(s.plane, s.equivalent, kTableFactor) ||
                               supports(s.plane, s.calibration, kTableFactor);
        return contradicts(s.plane, s.table, kTableFactor) && !supported
                   ? QStringLiteral("contradicts the sensor table")
                   : QString();
    }
    return contradicts(s.plane, s.equivalent, kEquivalentFactor)
               ? QStringLiteral("contradicts the 35 mm equivalent")
               : QString();
}

QString doubtOfCalibration(const Sources& s)
{
    if (!usable(s.calibration)) {
        return s.calibration ? s.calibration->doubt : QString();
    }
    const bool alone = !usable(s.plane) && !usable(s.table) && !usable(s.equivalent);
    const bool supported = supports(s.calibration, s.plane, kTableFactor) ||
                           supports(s.calibration, s.table, kTableFactor) ||
                           supports(s.calibration, s.equivalent, kEquivalentFactor);
    return alone || supported ? QString() : QStringLiteral("contradicts all other sources");
}

Sources findSources(const ExifInfo& exif)
{
    Sources s;
    s.calibration = fromCalibration(exif);
    s.equivalent = from35mm(exif);
    if (exif.focalPlane && exif.focalPlane->x > 0.0 && exif.focalPlane->y > 0.0) {
        s.plane = fromFocalPlane(exif, *exif.focalPlane);
    }
    if (const auto sensor = findSensorSize(exif.make, exif.model)) {
        s.table = fromSensor(exif, *sensor);
        if (narrowerThan(*sensor, exif) &&
            (contradicts(s.table, s.plane, kOtherCameraFactor) ||
             contradicts(s.table, s.equivalent, kOtherCameraFactor) ||
             contradicts(s.table, s.calibration, kOtherCameraFactor))) {
            s.table->doubt = QStringLiteral("of another camera of this name");
        }
    }
    return s;
}

} // namespace

std::vector<PixelSizeEvidence> findPixelSizeEvidence(const ExifInfo& exif)
{
    if (exif.imageWidth == 0 || exif.imageHeight == 0) {
        return {};
    }
    Sources s = findSources(exif);
    if (s.plane) {
        s.plane->doubt = doubtOfFocalPlane(s);
    }
    if (s.calibration) {
        s.calibration->doubt = doubtOfCalibration(s);
    }
    // The tags are often rounded, or those of a nominal sensor.
    const bool tableFirst = supports(s.plane, s.table, kRoundedFactor);
    std::vector<PixelSizeEvidence> result;
    for (const auto& evidence :
         {tableFirst ? s.table : std::nullopt, s.plane, s.calibration,
          tableFirst ? std::nullopt : s.table, s.equivalent}) {
        if (evidence) {
            result.push_back(*evidence);
        }
    }
    return result;
}

} // namespace lumo::exif

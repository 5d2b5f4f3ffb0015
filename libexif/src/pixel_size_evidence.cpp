// SPDX-License-Identifier: Apache-2.0
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
constexpr double kEquivalentFactor = 1.5;
constexpr double kOtherCameraFactor = 1.15;

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
    } else if (!plausibleSensor(longSide(exif) / mean)) {
        evidence.doubt =
            QStringLiteral("the sensor would be %1 mm long").arg(longSide(exif) / mean);
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
    PixelSizeEvidence evidence{PixelSizeSource::Focal35mm, pixelSize, {}};
    if (!plausibleSensor(pixelSize * longSide(exif))) {
        evidence.doubt =
            QStringLiteral("the sensor would be %1 mm long").arg(pixelSize * longSide(exif));
    }
    return evidence;
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

/// Why the focal plane resolution is not believed beside the other sources.
QString doubtOfFocalPlane(
    const std::optional<PixelSizeEvidence>& plane, const std::optional<PixelSizeEvidence>& table,
    const std::optional<PixelSizeEvidence>& equivalent)
{
    if (!usable(plane)) {
        return plane ? plane->doubt : QString();
    }
    if (usable(table)) {
        const bool supported = usable(equivalent) && !contradicts(plane, equivalent, kTableFactor);
        return contradicts(plane, table, kTableFactor) && !supported
                   ? QStringLiteral("contradicts the sensor table")
                   : QString();
    }
    return contradicts(plane, equivalent, kEquivalentFactor)
               ? QStringLiteral("contradicts the 35 mm equivalent")
               : QString();
}

} // namespace

std::vector<PixelSizeEvidence> findPixelSizeEvidence(const ExifInfo& exif)
{
    if (exif.imageWidth == 0 || exif.imageHeight == 0) {
        return {};
    }
    std::optional<PixelSizeEvidence> plane;
    std::optional<PixelSizeEvidence> table;
    std::optional<PixelSizeEvidence> equivalent = from35mm(exif);
    if (exif.focalPlane && exif.focalPlane->x > 0.0 && exif.focalPlane->y > 0.0) {
        plane = fromFocalPlane(exif, *exif.focalPlane);
    }
    if (const auto sensor = findSensorSize(exif.make, exif.model)) {
        table = fromSensor(exif, *sensor);
        if (narrowerThan(*sensor, exif) && (contradicts(table, plane, kOtherCameraFactor) ||
                                            contradicts(table, equivalent, kOtherCameraFactor))) {
            table->doubt = QStringLiteral("of another camera of this name");
        }
    }
    if (plane) {
        plane->doubt = doubtOfFocalPlane(plane, table, equivalent);
    }
    std::vector<PixelSizeEvidence> result;
    for (const auto& evidence : {plane, table, equivalent}) {
        if (evidence) {
            result.push_back(*evidence);
        }
    }
    return result;
}

} // namespace lumo::exif

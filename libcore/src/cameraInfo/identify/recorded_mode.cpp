// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/identify/recorded_mode.h"

#include <algorithm>
#include <cmath>

namespace lumo {
namespace {

// All tolerances are shares of the compared value.
/// Modes of one camera may leave out a few columns at the sensor's border.
constexpr double kSameSensor = 0.03;
/// Pixel sizes in the database have few digits, and binning drops odd columns.
constexpr double kWholeNumber = 0.02;
/// 35 mm equivalents are rounded to whole mm: up to 15 % at 4 mm.
constexpr double kSupported = 0.15;

bool near(double a, double b, double tolerance)
{
    return std::abs(a / b - 1.0) <= tolerance;
}

/// A number of blocks of pixels, two or more; 0 if the factor is no such number.
int wholeFactor(double factor)
{
    const double whole = std::round(factor);
    return whole >= 2.0 && near(factor, whole, kWholeNumber) ? static_cast<int>(whole) : 0;
}

bool narrower(const KnownMode& a, const KnownMode& b)
{
    return a.widthMm() < b.widthMm();
}

/// Whether the widest pictures of all focal lengths come from equal sensors.
bool oneSensor(const std::vector<KnownMode>& modes)
{
    std::map<QString, double> widest;
    for (const KnownMode& mode : modes) {
        double& width = widest[mode.focalLength];
        width = std::max(width, mode.widthMm());
    }
    return std::all_of(widest.begin(), widest.end(), [&widest](const auto& each) {
        return near(each.second, widest.begin()->second, kSameSensor);
    });
}

/// The modes of the one camera of this focal length; none if several cameras with
/// other sensors share the name.
std::vector<KnownMode> ofOneCamera(
    const std::vector<KnownMode>& modes, const QString& focalLength, QString& reason)
{
    std::vector<KnownMode> result;
    std::copy_if(
        modes.begin(), modes.end(), std::back_inserter(result),
        [&focalLength](const KnownMode& mode) { return mode.focalLength == focalLength; });
    if (!result.empty()) {
        return result;
    }
    if (oneSensor(modes)) {
        return modes;
    }
    QStringList names;
    for (const KnownMode& mode : modes) {
        names.append(mode.name);
    }
    reason = QStringLiteral("several cameras have this name, and none this focal length: %1")
                 .arg(names.join(QStringLiteral(", ")));
    return {};
}

/// Of two pictures that are about as wide on the sensor.
bool showsMore(const KnownMode& a, const KnownMode& b)
{
    return near(a.pixelSize, b.pixelSize, kWholeNumber) ? a.size.height > b.size.height
                                                        : a.pixelSize < b.pixelSize;
}

/// The whole sensor in its finest pixels.
/// \param modes  of one camera, not empty
const KnownMode& fullMode(const std::vector<KnownMode>& modes)
{
    const KnownMode& widest = *std::max_element(modes.begin(), modes.end(), narrower);
    const KnownMode* full = &widest;
    for (const KnownMode& mode : modes) {
        if (near(mode.widthMm(), widest.widthMm(), kSameSensor) && showsMore(mode, *full)) {
            full = &mode;
        }
    }
    return *full;
}

ImageMode modeAgainst(const KnownMode& full, const KnownMode& mode)
{
    if (mode.size == full.size) {
        return ImageMode::Native;
    }
    const double factor = mode.pixelSize / full.pixelSize;
    if (near(factor, 1.0, kWholeNumber)) {
        return ImageMode::Cropped;
    }
    return wholeFactor(factor) != 0 ? ImageMode::Binned : ImageMode::Resized;
}

RecordedMode listed(const KnownMode& full, const KnownMode& mode)
{
    return {
        modeAgainst(full, mode),
        mode.pixelSize,
        mode.name,
        QStringLiteral("%1 is of this size").arg(mode.name),
        {}};
}

bool supports(const std::vector<exif::PixelSizeEvidence>& evidence, double pixelSize)
{
    return std::any_of(evidence.begin(), evidence.end(), [pixelSize](const auto& each) {
        return each.doubt.isEmpty() && each.source != exif::PixelSizeSource::SensorTable &&
               near(each.pixelSizeMm, pixelSize, kSupported);
    });
}

RecordedMode scaledFrom(
    const KnownMode& full, double scale, const std::vector<exif::PixelSizeEvidence>& evidence)
{
    const double scaled = full.pixelSize * scale;
    if (wholeFactor(scale) != 0) {
        return {
            ImageMode::Unknown,
            scaled,
            full.name,
            QStringLiteral("1/%1 of %2: scaled or binned").arg(wholeFactor(scale)).arg(full.name),
            {}};
    }
    // A camera may crop the sensor and scale the crop up to the same proportions. Only
    // independent evidence of the pixel size can distinguish this from plain scaling.
    const bool asScaled = supports(evidence, scaled);
    const bool asCrop = supports(evidence, full.pixelSize);
    if (asScaled != asCrop) {
        return {
            asScaled ? ImageMode::Resized : ImageMode::Cropped,
            asScaled ? scaled : full.pixelSize,
            full.name,
            QStringLiteral("has the proportions of %1, and the metadata fit %2")
                .arg(full.name, asScaled ? QStringLiteral("scaling") : QStringLiteral("a crop")),
            {}};
    }
    return {
        ImageMode::Unknown,
        0.0,
        {},
        QStringLiteral("has the proportions of %1: scaled or a crop").arg(full.name),
        {}};
}

} // namespace

bool severalSensors(const KnownModes& modes, const ExifInfo& exif)
{
    return !oneSensor(modes.of(exif.exifId()));
}

RecordedMode modeOfModel(const KnownModes& modes, const QString& identifier)
{
    const std::vector<KnownMode> known = modes.of({identifier, identifier});
    for (const KnownMode& mode : known) {
        if (mode.identifier == identifier) {
            QString reason;
            return listed(fullMode(ofOneCamera(known, mode.focalLength, reason)), mode);
        }
    }
    return {};
}

RecordedMode findRecordedMode(
    const KnownModes& modes, const ExifInfo& exif,
    const std::vector<exif::PixelSizeEvidence>& evidence)
{
    const std::vector<KnownMode> all = modes.of(exif.exifId());
    if (all.empty() || exif.imageWidth == 0 || exif.imageHeight == 0) {
        return {};
    }
    QString ambiguity;
    const std::vector<KnownMode> own =
        ofOneCamera(all, QString::number(exif.focalLengthMm, 'f', 1), ambiguity);
    if (own.empty()) {
        return {ImageMode::Unknown, 0.0, {}, ambiguity, {}};
    }
    const PictureSize size{exif.imageWidth, exif.imageHeight};
    const KnownMode& full = fullMode(own);
    for (const KnownMode& mode : own) {
        if (compareSizes(mode.size, size).mode == ImageMode::Native) {
            RecordedMode result = listed(full, mode);
            if (exif.model.isEmpty()) {
                result.caution =
                    QStringLiteral("the metadata name the maker but no model: assumed to be %1")
                        .arg(mode.name);
            }
            return result;
        }
    }
    if (exif.model.isEmpty()) {
        return {
            ImageMode::Unknown,
            0.0,
            {},
            QStringLiteral("the metadata name the maker but no model"),
            {}};
    }
    // Cameras crop for another aspect ratio and keep one side then. A crop of both sides
    // could come from any of the camera's modes.
    for (const KnownMode& mode : own) {
        const SizeChange change = compareSizes(mode.size, size);
        if (change.mode == ImageMode::Cropped && change.keepsASide) {
            return {
                ImageMode::Cropped,
                mode.pixelSize,
                mode.name,
                QStringLiteral("a crop of %1 that keeps a side").arg(mode.name),
                {}};
        }
    }
    const SizeChange change = compareSizes(full.size, size);
    if (change.mode == ImageMode::Resized) {
        return scaledFrom(full, change.scale, evidence);
    }
    return {
        ImageMode::Unknown,
        0.0,
        {},
        QStringLiteral("neither a crop that keeps a side nor a scaled picture of %1")
            .arg(full.name),
        {}};
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"
#include "lumo/cameradata/export.h"
#include "lumo/cameradata/lens_calibration.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace lumo {

/// The identifiers under which a camera database may know an image's camera,
/// the more specific one first.
///
/// first:  "<model>[_<lens>]_<focal length, mm, one decimal>_<width>x<height>",
///         such as "FC6310_8.8_5472x3648"; the larger side comes first
/// second: the same without the lens
///
/// A missing focal length is written "0.0". The make replaces a missing model; if both
/// are missing, both identifiers are empty. In model and lens, "-" replaces every
/// character except letters, digits, "-", ".", "+" and blank.
struct ExifID
{
    QString first;
    QString second;

    bool operator==(const ExifID&) const = default;
};

/// The density of the sensor's pixels according to the EXIF focal plane tags.
struct FocalPlaneResolution
{
    double x = 0.0; ///< pixels per millimetre along the image width
    double y = 0.0; ///< pixels per millimetre along the image height

    bool operator==(const FocalPlaneResolution&) const = default;
};

/// Angles between the edges of the recorded picture, in degrees; 0 if not stated.
/// Of portrait pictures, too, the horizontal angle is along the longer side.
struct FieldOfView
{
    double horizontalDeg = 0.0;
    double verticalDeg = 0.0;
    double diagonalDeg = 0.0;

    bool operator==(const FieldOfView&) const = default;
};

/// One term, coefficient * x^xPower * y^yPower, of a polynomial for the brightness. x and
/// y run from 0 to 1 along the image width and height; 1 means no loss of light.
struct VignettingTerm
{
    int xPower = 0;
    int yPower = 0;
    double coefficient = 0.0;

    bool operator==(const VignettingTerm&) const = default;
};

/// The metadata of one image that concern its camera. A number that is missing in the
/// file or makes no sense is 0.
struct LUMO_CAMERADATA_EXPORT ExifInfo
{
    QString make;
    QString model;
    QString lensModel;
    QString serialNumber; ///< of the camera body
    double focalLengthMm = 0.0;
    double focalLength35Mm = 0.0; ///< gives the same diagonal angle on 36 mm x 24 mm
    double fNumber = 0.0;
    double digitalZoom = 0.0; ///< a factor; 1 or 0: no zoom
    /// The size (pixels) that the camera recorded: the EXIF size, or the size of the
    /// pixel array if that is larger.
    std::size_t imageWidth = 0;
    std::size_t imageHeight = 0;
    bool sizeStated = false; ///< whether the metadata state a size
    /// The size (pixels) of the pixel array in the file; 0 x 0 if it has none.
    std::size_t fileWidth = 0;
    std::size_t fileHeight = 0;
    std::optional<FocalPlaneResolution> focalPlane;
    double sensorDiagonalMm = 0.0; ///< of the sensor's part that the recorded picture shows
    std::optional<FieldOfView> fieldOfView;
    /// The detector of a thermal camera; its picture may be of another size.
    std::size_t thermalWidth = 0;
    std::size_t thermalHeight = 0;
    bool spherical = false; ///< an equirectangular panorama of the whole sphere
    QString software;       ///< the last program that wrote the file, often the firmware
    std::optional<LensCalibration> calibration; ///< set only if all of it is present
    std::vector<VignettingTerm> vignetting;
    double lineReadoutTimeMs = 0.0; ///< between the starts of two lines
    bands_t bands;
    bool bandsNamed = false; ///< false: `bands` was derived from the number of channels
    QDateTime dateTime;      ///< time of exposure (the camera's local time, ms)
    QString captureId;       ///< equal for all images of one capture of a rig
    QString rigName;
    std::optional<int> rigCameraIndex;
    /// Rotation relative to the rig's reference camera about x, y and z (degrees).
    std::optional<std::array<double, 3>> rigRelatives;
    std::optional<int> rigReferenceIndex; ///< camera index that rigRelatives refer to
    std::vector<double>
        irradiance; ///< readings of a light sensor, in the file's own unit and order

    [[nodiscard]] std::size_t bandCount() const { return bands.size(); }

    /// Whether make, model, lens, focal length and size are all missing.
    [[nodiscard]] bool empty() const;

    /// Computes the identifiers from make, model, lens, focal length and size.
    [[nodiscard]] ExifID exifId() const;

    bool operator==(const ExifInfo&) const = default;
};

/// Splits an identifier of ExifID's form into {key, integer part of the focal length,
/// its decimal part, width, height}. The key "<model>[_<lens>]" may contain "_". Splits
/// any other text at each "_".
[[nodiscard]] LUMO_CAMERADATA_EXPORT QStringList tokenizeExifId(const QString& exifId);

} // namespace lumo

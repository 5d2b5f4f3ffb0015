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
///         such as "FC6310_8.8_5472x3648"; the larger side stands first
/// second: the same without the lens
///
/// A missing focal length is "0.0", a missing model is replaced by the make, and
/// without both the identifiers are empty. In model and lens every character
/// but letters, digits, "-", ".", "+" and blank becomes "-".
struct ExifID
{
    QString first;
    QString second;

    bool operator==(const ExifID&) const = default;
};

/// Number of sensor pixels per unit of length, as the EXIF focal plane tags say.
struct FocalPlaneResolution
{
    double x = 0.0; ///< pixels per millimetre along the image width
    double y = 0.0; ///< pixels per millimetre along the image height

    bool operator==(const FocalPlaneResolution&) const = default;
};

/// A term of a brightness polynomial in x and y, which run from 0 to 1 along the image
/// width and height; the polynomial is 1 where no light is lost.
struct VignettingTerm
{
    int xPower = 0;
    int yPower = 0;
    double coefficient = 0.0;

    bool operator==(const VignettingTerm&) const = default;
};

/// The metadata of one image, as far as cameras are concerned. A plain record;
/// numbers that the file does not hold, or holds as nonsense, are 0.
struct LUMO_CAMERADATA_EXPORT ExifInfo
{
    QString make;
    QString model;
    QString lensModel;
    QString serialNumber; ///< of the camera body
    double focalLengthMm = 0.0;
    double focalLength35Mm = 0.0; ///< on a 36 mm x 24 mm frame, by the diagonal
    double fNumber = 0.0;
    double digitalZoom = 0.0; ///< as a factor; 1 or 0: none
    /// The size the camera recorded: the EXIF size where it is larger than the
    /// pixel array, else the pixel array.
    std::size_t imageWidth = 0;
    std::size_t imageHeight = 0;
    bool sizeStated = false; ///< by the metadata; else the size is that of the pixel array alone
    /// The pixel array in the file; 0 x 0 if the file holds no picture.
    std::size_t fileWidth = 0;
    std::size_t fileHeight = 0;
    std::optional<FocalPlaneResolution> focalPlane;
    std::optional<LensCalibration> calibration; ///< if the image carries a whole one
    std::vector<VignettingTerm> vignetting;
    double lineReadoutTimeMs = 0.0; ///< between the starts of two lines
    bands_t bands;
    bool bandsNamed = false; ///< by the file itself; else they follow from the number of channels
    QDateTime dateTime;      ///< of exposure, in the camera's local time, to the millisecond
    QString captureId;       ///< the same for all images of one capture of a rig
    QString rigName;
    std::optional<int> rigCameraIndex;
    /// Rotation relative to the rig's reference camera about x, y and z (degrees).
    std::optional<std::array<double, 3>> rigRelatives;
    std::optional<int> rigReferenceIndex; ///< camera index that rigRelatives refer to
    std::vector<double>
        irradiance; ///< readings of a light sensor, in the file's own unit and order

    [[nodiscard]] std::size_t bandCount() const { return bands.size(); }

    /// Neither make, model, lens, focal length nor size.
    [[nodiscard]] bool empty() const;

    [[nodiscard]] ExifID exifId() const;

    bool operator==(const ExifInfo&) const = default;
};

/// Splits an identifier of ExifID's form, from the right, into {key, integer
/// part and decimal part of the focal length, width, height}, where the key is
/// "<model>[_<lens>]"; any other text is split at "_".
[[nodiscard]] LUMO_CAMERADATA_EXPORT QStringList tokenizeExifId(const QString& exifId);

} // namespace lumo

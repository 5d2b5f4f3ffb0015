// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/export.h"

#include <QString>

#include <vector>

namespace lumo {
namespace exif {

/// What a pixel size was taken from.
enum class PixelSizeSource {
    None,
    FocalPlane,  ///< the focal plane resolution tags
    SensorTable, ///< findSensorSize
    Focal35mm,   ///< the ratio of focal length to its 35 mm equivalent
    Calibration, ///< the ratio of focal length to the calibrated one in pixels
};

/// One statement about the pixel size of an image.
struct PixelSizeEvidence
{
    PixelSizeSource source = PixelSizeSource::None;
    double pixelSizeMm = 0.0;
    QString doubt; ///< why it is not believed; empty if it is

    bool operator==(const PixelSizeEvidence&) const = default;
};

/// What the metadata say about the pixel size at the size that the camera
/// recorded (ExifInfo::imageWidth x imageHeight), the most trusted first. Sources
/// that say nothing are left out. Portrait and landscape give the same.
///
/// - Focal plane resolution r: 1 / r, r the mean of both axes. Doubted if the
///   axes differ by more than 5 %; if the sensor would not be 1 to 70 mm long; if
///   it differs from the sensor table by more than a factor of 1.2 and neither the 35 mm
///   equivalent nor the calibration supports it (images scaled after the tag was written;
///   a Canon EOS 20D is 1.37 off by itself); if, without a table entry, it differs
///   from the 35 mm equivalent, which is coarse, by more than 1.5. Two values in
///   the proportion of the image's sides are taken as the sensor's size in
///   millimetres, which some thermal cameras write here. Where the sensor table agrees
///   within a factor of 1.05 that goes first: cameras round these tags, or state those
///   of a nominal sensor.
/// - Calibration in pixels: the focal length over the calibrated one, the design's
///   where that is stated, of a fisheye lens (2 / pi) p1 sqrt(|c f - d e|). Right to
///   some 2 %, as lenses differ from their designs. Doubted if the sensor would not
///   be 1 to 70 mm long, or if there are other believed sources and none is within
///   the factors above.
/// - Sensor table: the smaller of sensor side / image side over both axes, as an
///   image of another shape than the sensor is a crop along one of them. Doubted
///   if the image is narrower than the sensor without being square (cameras crop
///   to wider shapes or to squares) and another source differs by more than a
///   factor of 1.15: it is then from another camera of the product.
/// - 35 mm equivalent: the diagonal of a 36 mm x 24 mm frame, 43.267 mm, times
///   focal length / equivalent is the sensor's diagonal. Doubted below 9 mm, wider
///   than perspective lenses are built: of a fisheye lens the ratio says nothing.
[[nodiscard]] LUMO_EXIF_EXPORT std::vector<PixelSizeEvidence> findPixelSizeEvidence(
    const ExifInfo& exif);

/// The camera that the metadata describe, with a pixel size (mm) from elsewhere; 0
/// if there is none. What the metadata do not say is empty or 0.
///
/// A calibration in the image gives focal length, principal point and distortion or
/// fisheye terms, unless its focal length, at this pixel size, is off the EXIF one by
/// more than a factor of 1.2, or its principal point by more than an eighth of the
/// longer side off the middle (it is then of another camera or image size): it is
/// refused as a whole, with a log warning. Portrait images get it turned as
/// CameraParams::turned() does. See readExif for what is read. A line read-out time
/// leaves the shutter model as it is: cameras with a global shutter state one, too. A
/// vignetting polynomial stands under the image's f-number, rows for powers of y.
[[nodiscard]] LUMO_EXIF_EXPORT CameraData makeCamera(const ExifInfo& exif, double pixelSizeMm);

/// The camera that metadata alone yield, at the size that the camera recorded: as
/// calibrated, else a perspective lens without distortion, principal point in the
/// middle. Named by
/// the first identifier of ExifInfo::exifId() that is a valid camera name. The
/// pixel size is the first evidence that is not doubted; doubted evidence before
/// it is logged.
/// \param[out] camera  replaced on success, untouched on failure
/// \param[out] from    if given: where the pixel size is from; as `camera`
/// \param[out] error   on failure which of name, image size, focal length or pixel
///     size cannot be had, else untouched
[[nodiscard]] LUMO_EXIF_EXPORT bool getCamera(
    const ExifInfo& exif, CameraData& camera, PixelSizeSource* from, QString& error);

} // namespace exif

namespace text {

/// "none", "focalPlane", "calibration", "sensorTable" or "focal35mm".
[[nodiscard]] LUMO_EXIF_EXPORT QString toString(exif::PixelSizeSource source);

} // namespace text
} // namespace lumo

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
    FieldOfView, ///< a stated angle of view, or the projection of a panorama
};

/// One statement about the pixel size of an image.
struct PixelSizeEvidence
{
    PixelSizeSource source = PixelSizeSource::None;
    double pixelSizeMm = 0.0;
    double sigma = 0.0;      ///< standard deviation, relative to the pixel size, where it is right
    double wrongShare = 0.0; ///< how often such evidence is plainly wrong, 0 to 1
    QString formula{};       ///< how it was computed, in words with the numbers
    QString reason{};        ///< what the standard deviation is made of
    QString doubt{};         ///< why it cannot be right and does not count; empty if it may be

    bool operator==(const PixelSizeEvidence&) const = default;
};

/// What several statements yield together.
struct CombinedPixelSize
{
    double pixelSizeMm = 0.0;       ///< 0 if there is no evidence that counts
    double sigma = 0.0;             ///< standard deviation, relative to the pixel size
    double sigmaWithoutDoubt = 0.0; ///< if the evidence that it rests on is right
    PixelSizeSource from = PixelSizeSource::None; ///< the finest evidence that it rests on

    bool operator==(const CombinedPixelSize&) const = default;
};

/// What the metadata tell about the pixel size at the size that the camera recorded
/// (ExifInfo::imageWidth x imageHeight). Sources that tell nothing are left out. Portrait and
/// landscape give the same. Relative standard deviations, and how often it is plainly wrong:
///
/// - Sensor table: the smaller of sensor side / image side over both axes, since an image of
///   another shape than the sensor is a crop along one of them. 1 % (2 % if one side is known)
///   and its rounding. Wrong for 4 % of the pictures of the whole sensor and 6 % of crops; 30 %
///   of those that are narrower than the sensor or name their bands, and 80 % of detectors of
///   5:4: the table knows one camera of a product.
/// - Focal plane resolution r: 1 / r, r the mean of both axes, which must agree within 5 %; or
///   Olympus' diagonal of the focal plane. 1 %, Canon's 2 %, since its tags include the margin
///   of the sensor. Wrong for 6 %, and for 30 % of the files that an editor wrote: programs
///   that scale keep the old value. Two values in the proportion of the image's sides are
///   the sensor's sides in millimetres, which some thermal cameras write here.
/// - Calibration in pixels: the focal length over the calibrated one (2 %, as lenses differ
///   from their designs), or over the design's where that is stated (1 %); of a fisheye lens
///   (2 / pi) p1 sqrt(|c f - d e|). Wrong for 3 %.
/// - Field of view: 2 f tan(angle / 2) over the pixels along it, 2 %; of a spherical panorama
///   2 pi f / width. Wrong for 5 %.
/// - 35 mm equivalent: 43.267 mm times focal length / equivalent is the sensor's diagonal.
///   2.2 %, and the rounding of both lengths; for pictures wider than 16:10 half of what two
///   ways to count differ, that of the picture and that of a 4:3 sensor as wide. The factors
///   1, 1.5 and 2 mean known sensors (1 %). Wrong for 5 %, of wide pictures 8 %. Below 9 mm it does
///   not count: only a fisheye lens is as wide, and its ratio does not give the diagonal.
///
/// A digital zoom that brings sensor table or focal plane closer to the 35 mm equivalent
/// divides them. Nothing counts by which the sensor would not be 1 to 70 mm long.
[[nodiscard]] LUMO_EXIF_EXPORT std::vector<PixelSizeEvidence> findPixelSizeEvidence(
    const ExifInfo& exif);

/// Whether a program that edits pictures wrote the file last, by ExifInfo::software. Most
/// cameras name their firmware there.
[[nodiscard]] LUMO_EXIF_EXPORT bool isEdited(const ExifInfo& exif);

/// Combines evidence by weight. Each may be right or plainly wrong; of all combinations the
/// most likely one counts (W. H. Press, "Understanding Data Better with Bayesian and Global
/// Statistical Methods", 1996): what is wrong in it has its wrongShare, spread over a factor
/// of 4 either way.
/// Its value is the mean by inverse variance of the logarithms, over evidence of up to twice
/// the finest sigma; coarser evidence, and a 35 mm equivalent beside finer evidence of another
/// source, confirms it. Where other combinations have more than
/// 10 % of the probability, the sigma covers them; where all evidence is wrong with more than
/// 40 %, there is no value. Of field of view and 35 mm equivalent,
/// which have one origin, the finer counts.
[[nodiscard]] LUMO_EXIF_EXPORT CombinedPixelSize
combinePixelSizes(const std::vector<PixelSizeEvidence>& evidence);

/// How many standard deviations of their difference evidence is off a pixel size.
/// \param pixelSizeMm  greater than 0
/// \param sigma  relative standard deviation of the pixel size
[[nodiscard]] LUMO_EXIF_EXPORT double sigmasApart(
    const PixelSizeEvidence& evidence, double pixelSizeMm, double sigma);

/// The camera that the metadata describe, with a pixel size (mm) from elsewhere; 0
/// if there is none. What the metadata do not say is empty or 0.
///
/// Where the 35 mm equivalent is below 9 mm the lens is an equidistant fisheye; a panorama
/// of the whole sphere is spherical.
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
/// pixel size is that of combinePixelSizes(); evidence more than three sigma off is logged.
/// \param[out] camera  replaced on success, untouched on failure
/// \param[out] from    if given: where the pixel size is from; as `camera`
/// \param[out] error   on failure which of name, image size, focal length or pixel
///     size cannot be had, else untouched
[[nodiscard]] LUMO_EXIF_EXPORT bool getCamera(
    const ExifInfo& exif, CameraData& camera, PixelSizeSource* from, QString& error);

} // namespace exif

namespace text {

/// "none", "focalPlane", "calibration", "sensorTable", "focal35mm" or "fieldOfView".
[[nodiscard]] LUMO_EXIF_EXPORT QString toString(exif::PixelSizeSource source);

} // namespace text
} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/export.h"

#include <QString>
#include <QStringList>

/// What image files say about the camera that took them. All functions may run
/// in parallel; no pixel is read.
namespace lumo::exif {

/// Reads the metadata of an image file: JPEG, TIFF, DNG, IIQ, HEIC, HEIF, AVIF, CR3 and
/// the other still pictures that exiv2 knows. Videos, sound, JPEG XL and X3F are refused by
/// name.
///
/// No file takes much time or memory, whatever it contains: entries above 128 KiB are left
/// out, and a file is refused whose directories or boxes refer to each other so that reading
/// them would be expensive. Of a damaged file the tags before the damage are kept.
///
/// A number that cannot be right (zero, negative, not finite, absurdly large)
/// becomes 0 and control characters are dropped, each with a log warning that
/// names the field; neither is a failure. XMP properties are matched by prefix
/// and local name, whatever namespace the maker bound the prefix to.
///
/// - Size: the EXIF size where it has more pixels than the file's own pixel
///   array, else the pixel array. Of a raw file the main image counts, not the
///   preview.
/// - Focal plane resolution: pixels per millimetre; a missing unit is the inch.
/// - Calibration: the first of these sets that is begun, if it is whole; what is
///   missing or wrong is named in a log warning, and the rest is not used then.
///   1. drone-dji:DewarpData "date;fx,fy,cx,cy,k1,k2,p1,p2,k3", pixels, cx and cy
///      from the image's middle. K1 to K3 = k1 to k3, T1 = p1, T2 = p2. Our focal
///      length is the mean of fx and fy, which moves points near an edge by up to
///      half their difference times the edge's distance over the focal length.
///   2. Camera:ModelType "perspective": PrincipalPoint "x,y" (mm from the upper
///      left corner), PerspectiveFocalLength, PerspectiveDistortion
///      "K1,K2,K3,T1,T2". The focal length is in mm where
///      PerspectiveFocalLengthUnits is "mm"; without a unit, in mm if within a
///      factor of 1.5 of the EXIF focal length, else in pixels.
///   3. Camera:ModelType "fisheye": PrincipalPoint, FisheyePolynomial "p0,p1,..." up
///      to p4 of theta = 2/pi times the angle, FisheyeAffineMatrix "c,d,e,f" (pixels).
///   4. drone-dji:CalibratedFocalLength, CalibratedOpticalCenterX and ...Y (pixels):
///      the design's, without distortion.
///   drone-dji:DewarpFlag 1 says that the camera has removed the distortion: the
///   terms are 0 then, and focal length and principal point are kept.
/// - Camera:LineReadoutTime (ns), and Camera:VignettingPolynomial2D in x and y from 0
///   to 1 with its ...Name, pairs of powers. Radial polynomials are not read: makers
///   write the loss under the same property, or the gain that makes up for it.
/// - Field of view: XMP CameraHorizontalFOV, CameraVerticalFOV and CameraDiagonalFOV of any
///   prefix (degrees), else that of a thermal camera's block beside EXIF, which also gives
///   its serial number, its lens and the size of its detector.
/// - Panorama: GPano's size before scaling counts as the EXIF size does; an equirectangular
///   one of the whole sphere is spherical.
/// - Focal length of CRW files: of Canon's maker notes.
/// - Bands: named by XMP, of whatever prefix; else Red, Green, Blue of a colour image, "Gray" of a
///   single channel, "Band 1" and so on of other numbers of channels. Widths are
///   full widths: where DJI states a half width ("450(+/-16)nm") it is doubled.
/// - Serial number: the text of the tag as it stands; zeros alone are none.
/// - Date and time: the camera's clock, as it stands, with the time
///   specification Qt::UTC so that no time zone of this machine changes it.
/// - Irradiance: the first channel of each record of a Sequoia's list, else the
///   one reading of the light sensor.
///
/// \param[out] exif   replaced on success, untouched on failure
/// \param[out] error  on failure the reason in one line, without the path: the
///     file cannot be opened, is no image, is damaged, or says nothing of its
///     camera
[[nodiscard]] LUMO_EXIF_EXPORT bool readExif(const QString& path, ExifInfo& exif, QString& error);

/// As readExif(path, exif, error), without the log warnings.
/// \param[out] notes  on success what the warnings would report, each in one line:
///     "read in part: <reason>" of a damaged file, "left out: <field>: <reason>; ..."
[[nodiscard]] LUMO_EXIF_EXPORT bool readExif(
    const QString& path, ExifInfo& exif, QStringList& notes, QString& error);

/// The serial number of the camera body that took an image, or of the device that
/// a factory calibration file is for; empty, with a log line that says why, if the
/// file cannot be read or holds none.
///
/// A calibration file is one named "sequoia_therm.dat": a text of at most 1 MiB
/// without NUL bytes. Read are, ignoring case,
///
///     serial: X     serial = X     serial X     "serial": "X",
///     <serial>X</serial>           <device serial="X">
///
/// on one line, of which the first 4096 bytes count; for `serial` also `serial
/// number` and `serial no`, with a blank, "_", "-" or nothing between. X has up to
/// 64 letters, digits, "." and "-", among them a digit other than 0. Several
/// numbers that differ count as none.
[[nodiscard]] LUMO_EXIF_EXPORT QString getSerialNumber(const QString& path);

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/export.h"

#include <QString>

/// What image files say about the camera that took them. All functions may run
/// in parallel; no pixel is read.
namespace lumo::exif {

/// Reads the metadata of an image file: JPEG, TIFF, DNG, IIQ and the other
/// formats that exiv2 knows.
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
/// - Bands: named by XMP; else Red, Green, Blue of a colour image, "Gray" of a
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

/// The serial number of the camera body that took an image; empty, with a log
/// line that says why, if the file cannot be read or holds none.
[[nodiscard]] LUMO_EXIF_EXPORT QString getSerialNumber(const QString& path);

} // namespace lumo::exif

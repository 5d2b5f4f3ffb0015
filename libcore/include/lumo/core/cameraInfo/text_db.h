// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/export.h"

#include <QString>

/// The text form of a camera database: comma-separated values in sections, for
/// spreadsheets and diffs.
///
///     lumo camera database,1
///     # a comment
///     [cameras]
///     name,imageWidthPx,imageHeightPx,pixelSizeUm,focalLengthMm
///     FC6310_8.8_5472x3648,5472,3648,2.4,8.8
///     [end]
///
/// The first line ends with the version of the form. Sections are cameras,
/// bands, vignetting, pixelValues, mappings, rigs, rigCameras and rigBands; each
/// is optional, and follows the sections that its rows refer to. A section begins
/// with a row of column names, in any order. Column names end with the unit. A
/// missing column or an empty cell means the default of its field. A camera
/// without rows in `bands` has red, green and blue. The columns "facts" and
/// "quality" are notes for people; reading ignores them. The last line, "[end]",
/// makes a file recognisable that was cut off.
///
/// Not stored: the centre and type of vignetting models. Reading makes them
/// polynomials.
namespace lumo::cameradb {

/// Reads all tables.
///
/// Fails at the first number or name that does not parse, record that is not valid
/// or occurs twice, and row that refers to a camera or rig the text does not
/// contain. Mappings may lead to models of another database.
/// \param[out] data   replaced on success, untouched on failure
/// \param[out] error  on failure "line L, column C: reason", else untouched. The
///     column is that of the cell's first character.
[[nodiscard]] LUMO_CORE_EXPORT bool readTextDB(
    const QString& text, CameraDBData& data, QString& error);

/// Writes the text form of valid cameras and rigs and of all mappings, in key order.
///
/// Leaves out what reading would refuse: a record that is not valid, the second
/// of two with one key, a mapping from or to an empty name, pixel values of an
/// unknown type, a vignetting model without coefficients. Lengths in
/// micrometres have 15 digits: more would not survive the conversion from and to mm.
/// Vignetting coefficients have 6 digits (see vignetting2string). Other numbers have as
/// many digits as reading them back exactly needs.
[[nodiscard]] LUMO_CORE_EXPORT QString writeTextDB(const CameraDBData& data);

/// Reads a UTF-8 file, or a Qt resource, of at most 256 MiB. Everything else
/// as readTextDB.
/// \param[out] error  on failure "PATH: reason", where readTextDB's reason
///     names line and column too
[[nodiscard]] LUMO_CORE_EXPORT bool loadTextDB(
    const QString& path, CameraDBData& data, QString& error);

/// The camera database that is built into this library.
[[nodiscard]] LUMO_CORE_EXPORT QString shippedTextDBPath();

} // namespace lumo::cameradb

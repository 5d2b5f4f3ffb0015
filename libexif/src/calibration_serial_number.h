// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/exif/export.h"

#include <QByteArray>
#include <QString>

namespace lumo::exif {

/// Files of more bytes are not looked into; a table of some thousand numbers has
/// a tenth of them.
inline constexpr qint64 kMaxCalibrationBytes = 1 << 20;

/// The serial number that a factory calibration file names, in one of the forms
/// that getSerialNumber documents.
/// \param[out] error  why there is none, in one line; else untouched
/// \returns empty if the file names none, or several that differ
[[nodiscard]] LUMO_TEST_EXPORT QString
findCalibrationSerialNumber(const QByteArray& content, QString& error);

} // namespace lumo::exif

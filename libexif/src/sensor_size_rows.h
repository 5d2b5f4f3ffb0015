// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/exif/export.h"
#include "lumo/exif/sensor_size_table.h"

#include <QByteArray>
#include <QHash>
#include <QString>

namespace lumo::exif {

/// The sizes by key. Both sides are 0 where cameras with different sensors share
/// the key.
using SensorSizes = QHash<QString, SensorSize>;

/// The key under which a camera stands in the table; empty if either part is.
[[nodiscard]] QString sensorSizeKey(const QString& make, const QString& model);

/// The shipped table as text.
[[nodiscard]] LUMO_TEST_EXPORT QByteArray shippedSensorSizes();

/// Reads lines of make, model, width and height (mm; may be empty), separated by
/// tabs; empty lines and those that start with "#" are skipped. Neither width nor
/// height: the name is that of cameras with different sensors. Of a key that comes
/// again the first line counts.
/// \param[out] sizes  replaced on success, untouched on failure
/// \param[out] error  on failure "line L: reason"
[[nodiscard]] LUMO_TEST_EXPORT bool parseSensorSizes(
    const QByteArray& text, SensorSizes& sizes, QString& error);

} // namespace lumo::exif

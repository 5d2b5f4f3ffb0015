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

/// The key of all variants of a phone whose name ends with its country or carrier;
/// empty if the name is not of a kind known to do so.
[[nodiscard]] QString sensorVariantKey(const QString& make, const QString& model);

/// The shipped table as text.
[[nodiscard]] LUMO_TEST_EXPORT QByteArray shippedSensorSizes();

/// Reads lines of make, model, width and height (mm; may be empty), separated by
/// tabs; empty lines and those that start with "#" are skipped. Neither width nor
/// height: the name is that of cameras with different sensors. Of a key that comes
/// again the first line counts. Variants of a phone also share an entry under their
/// common key.
/// \param[out] sizes  replaced on success, untouched on failure
/// \param[out] error  on failure "line L: reason"
[[nodiscard]] LUMO_TEST_EXPORT bool parseSensorSizes(
    const QByteArray& text, SensorSizes& sizes, QString& error);

} // namespace lumo::exif

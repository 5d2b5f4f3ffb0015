// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/sensor_size_table.h"

#include "lumo/foundation/log.h"
#include "sensor_size_rows.h"

#include <QSet>

namespace lumo::exif {
namespace {

SensorSizes load()
{
    SensorSizes sizes;
    QString error;
    if (!parseSensorSizes(shippedSensorSizes(), sizes, error)) {
        log::important() << "sensor size table:" << error;
    }
    return sizes;
}

const SensorSizes& table()
{
    static const SensorSizes sizes = load();
    return sizes;
}

const QSet<QString>& makers()
{
    static const QSet<QString> names = [] {
        QSet<QString> result;
        for (auto entry = table().keyBegin(); entry != table().keyEnd(); ++entry) {
            result.insert(entry->section(QLatin1Char('/'), 0, 0));
        }
        return result;
    }();
    return names;
}

/// The entry of the model itself, else that of its variants. Both sides are 0 if
/// cameras with different sensors have the name.
std::optional<SensorSize> findEntry(const QString& make, const QString& model)
{
    const SensorSizes& sizes = table();
    for (const QString& key : {sensorSizeKey(make, model), sensorVariantKey(make, model)}) {
        const auto found = key.isEmpty() ? sizes.constEnd() : sizes.constFind(key);
        if (found != sizes.constEnd()) {
            return *found;
        }
    }
    return std::nullopt;
}

std::optional<SensorSize> knownSize(const std::optional<SensorSize>& entry)
{
    return entry && entry->widthMm > 0.0 ? entry : std::nullopt;
}

} // namespace

std::optional<SensorSize> findSensorSize(const QString& make, const QString& model)
{
    auto entry = findEntry(make, model);
    if (!entry) {
        const QString simplified = model.simplified();
        entry = findEntry(
            simplified.section(QLatin1Char(' '), 0, 0), simplified.section(QLatin1Char(' '), 1));
    }
    return knownSize(entry);
}

std::optional<SensorSize> findSensorSize(const QString& model)
{
    std::optional<SensorSize> size;
    for (const QString& make : makers()) {
        const auto found = findEntry(make, model);
        if (!found) {
            continue;
        }
        if (size && *size != *found) {
            return std::nullopt;
        }
        size = found;
    }
    return knownSize(size);
}

} // namespace lumo::exif

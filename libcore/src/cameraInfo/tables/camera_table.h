// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_db_data.h"

#include <QString>

#include <map>

/// Lookup in one of the store's camera tables.
namespace lumo::cameratable {

using Table = std::multimap<QString, CameraModelFromDB>;

/// The entry of exactly this name and serial number, or end().
template <typename SomeTable>
auto findExact(SomeTable& table, const QString& name, const QString& serialNumber)
{
    auto [entry, last] = table.equal_range(name);
    while (entry != last && entry->second.serialNumber != serialNumber) {
        ++entry;
    }
    return entry == last ? table.end() : entry;
}

/// The entry of this serial number under a name; unless `exactSerial`, failing
/// that the generic entry (no serial number), failing that the first one. Names
/// that follow the exact one and differ in case only are searched too.
[[nodiscard]] const CameraModelFromDB* find(
    const Table& table, const QString& name, const QString& serialNumber, bool exactSerial);

} // namespace lumo::cameratable

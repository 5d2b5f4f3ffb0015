// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/tables/camera_table.h"

#include "lumo/foundation/text.h"

namespace lumo {

const CameraModelFromDB* cameratable::find(
    const Table& table, const QString& name, const QString& serialNumber, bool exactSerial)
{
    auto entry = table.lower_bound(name);
    if (entry == table.end() || entry->first != name) {
        return nullptr;
    }
    const CameraModelFromDB* fallback = &entry->second;
    for (; entry != table.end() && text::iequals(entry->first, name); ++entry) {
        const CameraModelFromDB& model = entry->second;
        if (model.serialNumber == serialNumber) {
            return &model;
        }
        if (model.serialNumber.isEmpty()) {
            fallback = &model;
        }
    }
    return exactSerial ? nullptr : fallback;
}

} // namespace lumo

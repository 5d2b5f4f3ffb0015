// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_camera.h"

#include <algorithm>
#include <ostream>

namespace lumo {

rig_camera_filter_t::rig_camera_filter_t(
    const QString& exifString, const QString& serialNumber, const QString& detectionString,
    const bands_t& cameraBands)
    : bands(cameraBands)
    , keys{serialNumber, detectionString, exifString}
{}

bool rig_camera_filter_t::empty() const
{
    const auto unknown = [](const QString& key) { return key.isEmpty(); };
    return !enabled || (bands.empty() && std::all_of(keys.begin(), keys.end(), unknown));
}

const QString& rig_camera_filter_t::unknownExifString()
{
    static const QString unknown = QStringLiteral("Unknown");
    return unknown;
}

std::ostream& operator<<(std::ostream& out, const rig_camera_filter_t& filter)
{
    out << (filter.enabled ? "[" : "[disabled, ");
    if (!filter.bands.empty()) {
        out << '{' << filter.bands.names().join(QLatin1Char(',')).toStdString() << "}, ";
    }
    out << '{';
    for (std::size_t key = 0; key < filter.keys.size(); ++key) {
        if (!filter.keys[key].isEmpty()) {
            out << key << ':' << filter.keys[key].toStdString() << ',';
        }
    }
    return out << "}]";
}

RigModelCameraAttr::RigModelCameraAttr(
    const QString& cameraName, const bands_t& cameraBands, const QString& exifString)
    : rig_camera_filter_t(exifString, QString(), QString(), cameraBands)
    , name(cameraName)
{}

} // namespace lumo

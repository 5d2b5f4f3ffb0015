// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_selftest.h"

#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_filter.h"
#include "lumo/exif/sensor_size_table.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace lumo {
namespace {

const QString& identifierOf(const CameraModelFromDB& model)
{
    return model.exifId.isEmpty() ? model.params.name : model.exifId;
}

/// By how much a pixel size differs from that of the sensor-size table, as a
/// share; 0 if the table does not say.
double tableDifference(const CameraModelFromDB& model)
{
    const QString key = tokenizeExifId(identifierOf(model)).value(0);
    const auto sensor = exif::findSensorSize(key); // identifiers carry no maker
    const auto longSide =
        static_cast<double>(std::max(model.params.imageWidth, model.params.imageHeight));
    if (!sensor || longSide == 0.0) {
        return 0.0;
    }
    return model.params.pixelSize * longSide / sensor->widthMm - 1.0;
}

void checkCameras(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    constexpr double kDoubtful = 0.05;
    std::map<QString, QString> ownerOf;
    for (const auto& [name, model] : database.internalData().cameras) {
        const QString& identifier = identifierOf(model);
        CameraModelFromDB found;
        if (!database.findCameraModel(
                database.exifId2cameraName(identifier, true), model.serialNumber, true, found,
                true) ||
            found.params.name != name) {
            findings.push_back(
                {name, QStringLiteral("its identifier '%1' does not find it").arg(identifier),
                 true});
        }
        const auto [owner, isNew] = ownerOf.emplace(identifier, name);
        if (!isNew && owner->second != name) {
            findings.push_back(
                {name, QStringLiteral("shares its identifier with '%1'").arg(owner->second), true});
        }
        const double difference = tableDifference(model);
        if (std::abs(difference) > kDoubtful) {
            findings.push_back(
                {name,
                 QStringLiteral("its sensor is %1 % %2 than the table of sensor sizes says")
                     .arg(std::abs(difference) * 100.0, 0, 'f', 1)
                     .arg(difference > 0.0 ? QStringLiteral("wider") : QStringLiteral("narrower")),
                 false});
        }
    }
}

void checkMappings(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    const cameradb::CameraDBData& data = database.internalData();
    for (const auto& [identifier, name] : data.mappings) {
        if (!data.cameras.contains(name)) {
            findings.push_back(
                {identifier, QStringLiteral("is mapped to '%1', which is no camera").arg(name),
                 true});
        }
    }
}

void checkRigs(const CameraModelDb& database, std::vector<DatabaseFinding>& findings)
{
    for (const auto& [name, rig] : database.internalData().rigs) {
        rig_filter_t filter = rig.makeRigFilter(true);
        filter.name.clear();
        RigModel found;
        if (!database.findBestRigModel(filter, found)) {
            findings.push_back(
                {name, QStringLiteral("a capture of its cameras finds no rig"), true});
        } else if (found.name != name) {
            findings.push_back(
                {name,
                 QStringLiteral("a capture of its cameras finds '%1' instead").arg(found.name),
                 true});
        }
    }
}

} // namespace

std::vector<DatabaseFinding> checkInternalDatabase(const CameraModelDb& database)
{
    std::vector<DatabaseFinding> findings;
    checkCameras(database, findings);
    checkMappings(database, findings);
    checkRigs(database, findings);
    return findings;
}

} // namespace lumo

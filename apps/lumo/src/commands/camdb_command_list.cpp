// SPDX-License-Identifier: Apache-2.0
// lumo camdb list and show.
#include "commands/camdb_command.h"
#include "input/database.h"
#include "lumo/core/cameraInfo/rig_db_iterator.h"
#include "show/camera_text.h"
#include "show/text_table.h"

#include <QJsonArray>
#include <QJsonObject>

#include <map>
#include <utility>
#include <vector>

namespace lumo::program::camdb {
namespace {

QJsonArray bandNames(const std::vector<bands_t>& configs)
{
    QJsonArray result;
    for (const bands_t& bands : configs) {
        result.append(QJsonArray::fromStringList(bands.names()));
    }
    return result;
}

QJsonObject toJson(const CameraModelFromDB& model)
{
    const CameraParams& params = model.params;
    return {
        {"kind", "camera"},
        {"name", params.name},
        {"serialNumber", model.serialNumber},
        {"source", text::toString(params.source)},
        {"exifId", model.identifier()},
        {"width", static_cast<qint64>(params.imageWidth)},
        {"height", static_cast<qint64>(params.imageHeight)},
        {"pixelSizeUm", shownNumber(params.pixelSize * kMicrometresPerMillimetre)},
        {"principalPointMm",
         QJsonArray{shownNumber(params.principalPointXMm), shownNumber(params.principalPointYMm)}},
        {"lens", text::toString(params.lensType)},
        {"focalLengthMm", shownNumber(params.perspective.focalLengthMm)},
        {"shutterModel", params.shutterModel},
        {"lineReadoutTimeMs", shownNumber(params.lineReadoutTime)},
        {"bands", bandNames(model.bandConfigs)},
    };
}

QJsonObject toJson(const RigModel& rig, CameraSource source)
{
    QJsonArray cameras;
    for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
        const RigModelCameraAttr& camera = rig.attr(i);
        QJsonObject object{
            {"name", camera.name},
            {"enabled", camera.enabled()},
            {"exifString", camera[RigKey::ExifString]},
            {"serialNumber", camera[RigKey::SerialNumber]},
            {"detectionString", camera[RigKey::DetectionString]},
            {"bands", QJsonArray::fromStringList(camera.bands().names())}};
        if (i != rig.refCameraIndex) {
            const rig_relatives_t& pose = rig.secondaries[rig.secCameraIndex(i)].relatives;
            object["rotationDeg"] = QJsonArray{pose.rotX, pose.rotY, pose.rotZ};
            object["translation"] = QJsonArray{pose.transl.x(), pose.transl.y(), pose.transl.z()};
        }
        cameras.append(object);
    }
    return {
        {"kind", "rig"},
        {"name", rig.name},
        {"source", text::toString(source)},
        {"detection", text::toString(rig.cameraDetection)},
        {"processingMode", text::toString(rig.processingMode)},
        {"referenceCamera", static_cast<qint64>(rig.refCameraIndex)},
        {"cameras", cameras},
    };
}

QStringList toRow(const CameraModelFromDB& model)
{
    const CameraParams& params = model.params;
    return {
        params.name,
        model.serialNumber,
        text::toString(params.source),
        QStringLiteral("%1x%2").arg(params.imageWidth).arg(params.imageHeight),
        QString::number(params.pixelSize * kMicrometresPerMillimetre, 'f', 3),
        text::toString(params.lensType),
        model.defaultBands().names().join(QStringLiteral(", ")),
    };
}

/// All cameras that lookup would give, the user's over the shipped ones.
std::vector<CameraModelFromDB> allCameras(const CameraModelDb& database)
{
    std::vector<std::pair<QString, QString>> names;
    database.cameraNames(ExifInfo(), names);
    std::vector<CameraModelFromDB> models;
    for (const auto& [name, serialNumber] : names) {
        CameraModelFromDB model;
        if (database.findCameraModel(name, serialNumber, true, model, false)) {
            models.push_back(std::move(model));
        }
    }
    return models;
}

/// The rigs that lookup would give, by name.
std::vector<RigModel> allRigs(const CameraModelDb& database)
{
    std::map<QString, RigModel> rigs;
    for (RigDBIterator it(database); it.hasNext();) {
        const auto [stored, source] = it.next();
        RigModel rig = stored;
        rig.source = source;
        rigs.emplace(rig.name, std::move(rig)); // the user's come first
    }
    std::vector<RigModel> result;
    result.reserve(rigs.size());
    for (auto& [name, rig] : rigs) {
        result.push_back(std::move(rig));
    }
    return result;
}

QString number(double value)
{
    return QString::number(shownNumber(value), 'g', 12);
}

QString bandText(const std::vector<bands_t>& configs)
{
    QStringList items;
    for (const bands_t& bands : configs) {
        items.append(bands.names().join(QStringLiteral(", ")));
    }
    return items.join(QStringLiteral("; "));
}

QString toText(const CameraModelFromDB& model)
{
    const CameraParams& params = model.params;
    return formatTable(
        {{"what", "value"},
         {"camera", params.name},
         {"serial number", model.serialNumber},
         {"source", text::toString(params.source)},
         {"identifier of images", model.identifier()},
         {"size (pixels)", QStringLiteral("%1x%2").arg(params.imageWidth).arg(params.imageHeight)},
         {"pixel size (um)", number(params.pixelSize * kMicrometresPerMillimetre)},
         {"principal point (mm)",
          number(params.principalPointXMm) + QLatin1Char(' ') + number(params.principalPointYMm)},
         {"lens", text::toString(params.lensType)},
         {"focal length (mm)", number(params.perspective.focalLengthMm)},
         {"shutter model", QString::number(params.shutterModel)},
         {"line read-out time (ms)", number(params.lineReadoutTime)},
         {"bands", bandText(model.bandConfigs)}});
}

QString numbers(double x, double y, double z)
{
    return number(x) + QLatin1Char(' ') + number(y) + QLatin1Char(' ') + number(z);
}

QStringList toRow(const RigModel& rig, std::size_t i)
{
    const RigModelCameraAttr& camera = rig.attr(i);
    QStringList row{
        camera.name,
        camera.enabled() ? QStringLiteral("yes") : QStringLiteral("no"),
        camera[RigKey::ExifString],
        camera[RigKey::SerialNumber],
        camera[RigKey::DetectionString],
        camera.bands().names().join(QStringLiteral(", "))};
    if (i == rig.refCameraIndex) {
        return row + QStringList{QStringLiteral("reference"), QString()};
    }
    const rig_relatives_t& pose = rig.secondaries[rig.secCameraIndex(i)].relatives;
    return row + QStringList{
                     numbers(pose.rotX, pose.rotY, pose.rotZ),
                     numbers(pose.transl.x(), pose.transl.y(), pose.transl.z())};
}

QString toText(const RigModel& rig, CameraSource source)
{
    std::vector<QStringList> cameras{
        {"camera", "enabled", "identifier of images", "serial number", "part of the file name",
         "bands", "rotation (degrees)", "translation"}};
    for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
        cameras.push_back(toRow(rig, i));
    }
    return formatTable(
               {{"what", "value"},
                {"rig", rig.name},
                {"source", text::toString(source)},
                {"cameras distinguished by", text::toString(rig.cameraDetection)},
                {"processing mode", text::toString(rig.processingMode)}}) +
           QLatin1Char('\n') + formatTable(cameras);
}

/// The cameras of mapped identifiers; the user's mappings override the shipped ones.
std::map<QString, std::pair<QString, CameraSource>> allMappings(const CameraModelDb& database)
{
    std::map<QString, std::pair<QString, CameraSource>> mappings;
    for (const auto& [exifId, camera] : database.userData().mappings) {
        mappings.emplace(exifId, std::pair(camera, CameraSource::UserDatabase));
    }
    for (const auto& [exifId, camera] : database.internalData().mappings) {
        mappings.emplace(exifId, std::pair(camera, CameraSource::InternalDatabase));
    }
    return mappings;
}

} // namespace

ExitCode list(const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    const ExitCode exitCode = loadDatabase(database) ? AllDone : SomethingFailed;
    std::vector<QStringList> cameras{
        {"camera", "serial number", "source", "size", "pixel um", "lens", "bands"}};
    for (const CameraModelFromDB& model : allCameras(database)) {
        if (options.json) {
            printJsonLine(toJson(model));
        } else {
            cameras.push_back(toRow(model));
        }
    }
    std::vector<QStringList> rigs{{"rig", "source", "cameras"}};
    for (const RigModel& rig : allRigs(database)) {
        if (options.json) {
            printJsonLine(toJson(rig, rig.source));
        } else {
            rigs.push_back(
                {rig.name, text::toString(rig.source), QString::number(rig.cameraCount())});
        }
    }
    std::vector<QStringList> mappings{{"identifier of images", "source", "stands for"}};
    for (const auto& [exifId, mapping] : allMappings(database)) {
        const auto& [camera, source] = mapping;
        if (options.json) {
            printJsonLine(
                {{"kind", "mapping"},
                 {"exifId", exifId},
                 {"source", text::toString(source)},
                 {"camera", camera}});
        } else {
            mappings.push_back({exifId, text::toString(source), camera});
        }
    }
    if (!options.json) {
        const QLatin1Char gap('\n');
        printText(formatTable(cameras) + gap + formatTable(rigs) + gap + formatTable(mappings));
    }
    return exitCode;
}

ExitCode show(const QString& name, const QString& serialNumber, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    const ExitCode exitCode = loadDatabase(database) ? AllDone : SomethingFailed;
    CameraModelFromDB model;
    RigModel rig;
    if (database.findCameraModel(name, serialNumber, true, model, false)) {
        options.json ? printJsonLine(toJson(model)) : printText(toText(model));
    } else if (serialNumber.isEmpty() && database.findRigModel(name, rig, false)) {
        options.json ? printJsonLine(toJson(rig, rig.source)) : printText(toText(rig, rig.source));
    } else {
        sayFailure(name, QStringLiteral("no camera or rig of this name"));
        return SomethingFailed;
    }
    return exitCode;
}

} // namespace lumo::program::camdb

// SPDX-License-Identifier: Apache-2.0
// lumo camdb: the subcommands that change the user database.
#include "commands/camdb_command.h"
#include "input/database.h"
#include "lumo/core/cameraInfo/camera_db_import.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"

#include <QJsonObject>

namespace lumo::program::camdb {
namespace {

QString sizesText(const cameradb::CameraDBData& data)
{
    return QStringLiteral("cameras: %1, rigs: %2, mappings: %3")
        .arg(data.cameras.size())
        .arg(data.rigs.size())
        .arg(data.mappings.size());
}

QJsonObject sizesJson(const cameradb::CameraDBData& data)
{
    return {
        {"cameras", static_cast<qint64>(data.cameras.size())},
        {"rigs", static_cast<qint64>(data.rigs.size())},
        {"mappings", static_cast<qint64>(data.mappings.size())}};
}

} // namespace

ExitCode add(const QString& image, bool overwrite, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    ExifInfo exif;
    CameraData camera;
    QString error;
    if (!exif::readExif(image, exif, error)) {
        return failed(image, error, options);
    }
    // The model serves every body of this camera, and in a rig every band: a
    // calibration in the image is that of one lens.
    exif.serialNumber.clear();
    if (exif.calibration) {
        exif.calibration.reset();
        sayRemark(
            image, QStringLiteral("its calibration is left out: it is valid for one lens only"));
    }
    if (!exif::getCamera(exif, camera, nullptr, error)) {
        return failed(image, error, options);
    }
    const QString& name = camera.params.name;
    CameraModelFromDB held;
    const bool known = database.findCameraModel(name, QString(), true, held, false);
    const CameraModelFromDB model(camera, QString());
    // A known camera may have been measured, which is better than metadata. Without
    // --overwrite an image therefore only adds its bands.
    if (known && (overwrite ? held.equal(model) : !held.addBands(camera.bands))) {
        return failed(
            image,
            QStringLiteral("'%1' exists already (%2)%3")
                .arg(
                    name, text::toString(held.params.source),
                    overwrite ? QString() : QStringLiteral(": replace it with --overwrite")),
            options);
    }
    const bool saved =
        overwrite ? database.setCameraModel(model, true) : database.addCamera(camera, true);
    if (!saved) {
        return failed(image, QStringLiteral("'%1' could not be saved").arg(name), options);
    }
    if (options.json) {
        printJsonLine({{"file", image}, {"camera", name}});
    } else {
        printText(name + QLatin1Char('\n'));
    }
    return AllDone;
}

ExitCode remove(const QString& name, const QString& serialNumber, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    if (database.containsCameraModel(name, serialNumber, false, true)) {
        return database.removeCameraModel(name, serialNumber, true)
                   ? AllDone
                   : failed(name, QStringLiteral("could not be saved"), options);
    }
    if (serialNumber.isEmpty() && database.userData().rigs.contains(name)) {
        return database.removeRigModel(name, true)
                   ? AllDone
                   : failed(name, QStringLiteral("could not be saved"), options);
    }
    if (serialNumber.isEmpty() && database.userData().mappings.contains(name)) {
        // An identifier that is a camera's name needs no mapping to it.
        return database.setMapping(name, name, true)
                   ? AllDone
                   : failed(name, QStringLiteral("could not be saved"), options);
    }
    return failed(
        name, QStringLiteral("no camera, rig or mapping of your own has this name"), options);
}

ExitCode map(const QString& exifId, const QString& name, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    CameraModelFromDB model;
    if (!database.findCameraModel(name, model, false)) {
        return failed(name, QStringLiteral("no camera of this name"), options);
    }
    if (!database.setMapping(exifId, name, true)) {
        return failed(exifId, QStringLiteral("the mapping could not be made or saved"), options);
    }
    return AllDone;
}

ExitCode import(const QString& file, bool overwrite, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    const QString before = sizesText(database.userData());
    QString error;
    if (!importUserDatabase(database, file, overwrite, error)) {
        return failed(file, error, options);
    }
    if (!CameraDbIo(database).saveUserXML(error)) {
        return failed(file, QStringLiteral("was read, but could not be saved: ") + error, options);
    }
    if (options.json) {
        QJsonObject record = sizesJson(database.userData());
        record["file"] = file;
        printJsonLine(record);
    } else {
        printText(QStringLiteral("Your database: %1 (before: %2)\n")
                      .arg(sizesText(database.userData()), before));
    }
    return AllDone;
}

} // namespace lumo::program::camdb

// SPDX-License-Identifier: Apache-2.0
#include "camdb_command.h"
#include "database.h"
#include "lumo/core/cameraInfo/camera_db_import.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"

#include <QJsonObject>

namespace lumo::program::camdb {
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
        return failed(image, error);
    }
    // The model serves every body of this camera, and in a rig every band: a
    // calibration in the image is that of one lens.
    exif.serialNumber.clear();
    if (exif.calibration) {
        exif.calibration.reset();
        sayRemark(image, QStringLiteral("its own calibration is left out: it is one lens's"));
    }
    if (!exif::getCamera(exif, camera, nullptr, error)) {
        return failed(image, error);
    }
    const QString& name = camera.params.name;
    CameraModelFromDB held;
    const bool known = database.findCameraModel(name, QString(), true, held, false);
    const CameraModelFromDB model(camera, QString());
    // What is known may have been measured; of an image only its bands are news.
    if (known && (overwrite ? held.equal(model) : !held.addBands(camera.bands))) {
        return failed(
            image, QStringLiteral("'%1' is known already (%2)%3")
                       .arg(
                           name, text::toString(held.params.source),
                           overwrite ? QString() : QStringLiteral(": see --overwrite")));
    }
    const bool saved =
        overwrite ? database.setCameraModel(model, true) : database.addCamera(camera, true);
    if (!saved) {
        return failed(image, QStringLiteral("'%1' could not be saved").arg(name));
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
                   : failed(name, QStringLiteral("could not be saved"));
    }
    if (serialNumber.isEmpty() && database.userData().rigs.contains(name)) {
        return database.removeRigModel(name, true)
                   ? AllDone
                   : failed(name, QStringLiteral("could not be saved"));
    }
    return failed(name, QStringLiteral("no camera or rig of your own has this name"));
}

ExitCode map(const QString& exifId, const QString& name, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    CameraModelFromDB model;
    if (!database.findCameraModel(name, model, false)) {
        return failed(name, QStringLiteral("no camera of this name"));
    }
    if (!database.setMapping(exifId, name, true)) {
        return failed(exifId, QStringLiteral("cannot be mapped, or not be saved"));
    }
    return AllDone;
}

ExitCode import(const QString& file, bool overwrite, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    if (!loadForEditing(database)) {
        return SomethingFailed;
    }
    QString error;
    if (!importUserDatabase(database, file, overwrite, error)) {
        return failed(file, error);
    }
    if (!CameraDbIo(database).saveUserXML()) {
        return failed(file, QStringLiteral("what was read could not be saved"));
    }
    return AllDone;
}

} // namespace lumo::program::camdb

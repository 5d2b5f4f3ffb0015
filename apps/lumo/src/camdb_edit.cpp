// SPDX-License-Identifier: Apache-2.0
#include "camdb_command.h"
#include "database.h"
#include "lumo/core/cameraInfo/camera_db_import.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/read_exif.h"

namespace lumo::program::camdb {
namespace {

/// Loads the databases for a change. Without the user's own a change would
/// overwrite what did not load.
bool loadForEditing(CameraModelDb& database)
{
    return loadDatabase(database) && database.editingAllowed();
}

} // namespace

ExitCode add(const QString& image, const CommonOptions& options)
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
    const CameraModelFromDB model(camera, QString());
    CameraModelFromDB held;
    if (database.findCameraModel(model.params.name, QString(), true, held, false) &&
        held.equal(model)) {
        return failed(image, QStringLiteral("'%1' is known already").arg(model.params.name));
    }
    if (!database.setCameraModel(model, true)) {
        return failed(image, QStringLiteral("'%1' could not be saved").arg(model.params.name));
    }
    printText(model.params.name + QLatin1Char('\n'));
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

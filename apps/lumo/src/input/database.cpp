// SPDX-License-Identifier: Apache-2.0
#include "input/database.h"

#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/foundation/file.h"

#include <QSettings>

#include <memory>

namespace lumo::program {

CameraModelDb openDatabase(const CommonOptions& options)
{
    CameraDbSettings settings;
    settings.appSettings = std::make_shared<QSettings>(
        file::join(options.dataDirectory, QStringLiteral("settings.ini")), QSettings::IniFormat);
    settings.secondSettings = settings.appSettings;
    settings.dataDirectory = file::join(options.dataDirectory, QStringLiteral("cameraDB"));
    settings.checkInternalHash = true;
    return CameraModelDb(settings);
}

bool loadDatabase(CameraModelDb& database)
{
    QString error;
    if (!loadCameraDatabases(database, error)) {
        sayFailure(QStringLiteral("camera database"), error);
        return false;
    }
    return true;
}

bool loadForEditing(CameraModelDb& database)
{
    return loadDatabase(database) && database.editingAllowed();
}

} // namespace lumo::program

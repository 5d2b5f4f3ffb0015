// SPDX-License-Identifier: Apache-2.0
#include "database.h"

#include <QSettings>
#include <lumo/foundation/system.h>

#include <memory>

lumo::CameraModelDb databaseIn(const QString& folder)
{
    // Older databases are converted with the stylesheets that were installed.
    lumo::system::setApplicationDirectory(QStringLiteral(LUMO_APPLICATION_DIR));
    lumo::CameraDbSettings settings;
    settings.appSettings =
        std::make_shared<QSettings>(folder + "/settings.ini", QSettings::IniFormat);
    settings.dataDirectory = folder + "/cameraDB";
    return lumo::CameraModelDb(settings);
}

// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/document/user_file.h"

#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/lumo_text_file_io.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QSettings>

namespace lumo::cameradb {
namespace {

bool makeWritableFolder(const QString& file)
{
    const QString folder = file::dirname(file);
    if (!file::mkdir(folder)) {
        log::important() << QStringLiteral("Cannot create folder '%1'").arg(folder);
        return false;
    }
    if (file::readonly(folder)) {
        log::important() << QStringLiteral("Folder '%1' is read-only").arg(folder);
        return false;
    }
    return true;
}

} // namespace

bool writeTables(
    const CameraDbSettings& settings, const CameraDBData& tables, const QString& file, bool lock,
    unsigned& hash)
{
    if (!makeWritableFolder(file)) {
        return false;
    }
    TextFileIO io;
    QString error;
    if (!documentText(settings.headerPairs, tables, io.content(), error)) {
        log::important() << file + QStringLiteral(":") << error;
        return false;
    }
    if (!io.writeFile(file, lock)) {
        return false;
    }
    hash = qHash(io.content(), 0);
    return true;
}

bool writeUserFile(const CameraDbSettings& settings, const CameraDBData& userTables)
{
    const QString path = settings.userDBLoadFileName(kCurrentVersion);
    if (settings.secondSettings) {
        const QString key = settingsPath(settings.userDbKey, kCurrentVersion);
        settings.secondSettings->setValue(key, settings.secondSettings->value(key, path));
    }
    if (settings.dataDirectory.isEmpty()) {
        log::important() << "A data directory is required for saving the user camera database";
        return false;
    }
    unsigned unusedHash = 0;
    return writeTables(settings, userTables, path, false, unusedHash);
}

} // namespace lumo::cameradb

// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/document/user_file.h"

#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/lumo_text_file_io.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QSettings>

namespace lumo::cameradb {
namespace {

bool makeWritableFolder(const QString& file, QString& error)
{
    const QString folder = file::dirname(file);
    QString reason;
    if (!file::mkdir(folder)) {
        reason = QStringLiteral("Cannot create folder '%1'").arg(folder);
    } else if (file::readonly(folder)) {
        reason = QStringLiteral("Folder '%1' is read-only").arg(folder);
    } else {
        return true;
    }
    log::important() << reason;
    error = file + QStringLiteral(": ") + reason;
    return false;
}

} // namespace

bool writeTables(
    const CameraDbSettings& settings, const CameraDBData& tables, const QString& file, bool lock,
    unsigned& hash, QString& error)
{
    if (!makeWritableFolder(file, error)) {
        return false;
    }
    TextFileIO io;
    QString fault;
    if (!documentText(settings.headerPairs, tables, io.content(), fault)) {
        log::important() << file + QStringLiteral(":") << fault;
        error = file + QStringLiteral(": ") + fault;
        return false;
    }
    if (!io.writeFile(file, lock, error)) {
        return false;
    }
    hash = qHash(io.content(), 0);
    return true;
}

bool writeUserFile(const CameraDbSettings& settings, const CameraDBData& userTables, QString& error)
{
    const QString path = settings.userDBLoadFileName(kCurrentVersion);
    if (settings.secondSettings) {
        const QString key = settingsPath(settings.userDbKey, kCurrentVersion);
        settings.secondSettings->setValue(key, settings.secondSettings->value(key, path));
    }
    if (settings.dataDirectory.isEmpty()) {
        error = QStringLiteral("A data directory is required for saving the user camera database");
        log::important() << error;
        return false;
    }
    unsigned unusedHash = 0;
    return writeTables(settings, userTables, path, false, unusedHash, error);
}

} // namespace lumo::cameradb

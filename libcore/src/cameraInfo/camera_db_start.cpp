// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QDir>

namespace lumo {
namespace {

/// Carries an older user file forward, before anything makes the current folder:
/// that would hide the older ones.
void carryUserFileForward(CameraModelDb& database, CameraDbIo& io)
{
    const QString target = database.settings().userDBLoadFileName(cameradb::kCurrentVersion);
    const QString folder = file::dirname(target);
    const bool hadFolder = file::exists(folder);
    if (!file::exists(target) && !io.loadAndSavePreviousUserXML() && !hadFolder) {
        QDir().rmdir(folder); // only if it is empty
    }
}

} // namespace

bool loadCameraDatabases(CameraModelDb& database, QString& error)
{
    CameraDbIo io(database);
    const CameraDbSettings& settings = database.settings();
    carryUserFileForward(database, io);
    const QString internalFile = settings.internalDBFileName(cameradb::kCurrentVersion);
    if (!io.loadXML(internalFile, QString()) && !io.loadAndSaveInternalTextDB(QString())) {
        if (database.emptyInternalDB()) {
            error = QStringLiteral("the internal camera database cannot be made");
            return false;
        }
        log::warning() << QStringLiteral("'%1' cannot be written").arg(internalFile);
    }
    const QString userFile = settings.userDBLoadFileName(cameradb::kCurrentVersion);
    if (file::exists(userFile) && !io.loadXML(QString(), userFile)) {
        database.setUserDBReadOnly(true);
        error = QStringLiteral("'%1' does not load; it is left as it is, and your own cameras "
                               "and rigs can neither be used nor changed")
                    .arg(userFile);
        return false;
    }
    return true;
}

} // namespace lumo

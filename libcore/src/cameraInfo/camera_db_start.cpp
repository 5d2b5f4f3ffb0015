// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSettings>

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

/// What tells one shipped database from another.
QString shippedFingerprint()
{
    QFile shipped(cameradb::shippedTextDBPath());
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return shipped.open(QIODevice::ReadOnly) && hash.addData(&shipped)
               ? QString::fromLatin1(hash.result().toHex())
               : QString();
}

/// Loads the internal file if it was made of the database that this library ships,
/// else makes it anew: one that an older version left knows fewer cameras.
bool loadInternal(CameraDbIo& io, const CameraDbSettings& settings)
{
    if (!settings.appSettings) {
        return io.loadXML(settings.internalDBFileName(cameradb::kCurrentVersion), QString());
    }
    const QString key =
        cameradb::settingsPath(QStringLiteral("shippedDatabase"), cameradb::kCurrentVersion);
    const QString shipped = shippedFingerprint();
    if (settings.appSettings->value(key).toString() == shipped &&
        io.loadXML(settings.internalDBFileName(cameradb::kCurrentVersion), QString())) {
        return true;
    }
    if (!io.loadAndSaveInternalTextDB(QString())) {
        return false;
    }
    settings.appSettings->setValue(key, shipped);
    settings.appSettings->sync();
    return true;
}

} // namespace

bool loadCameraDatabases(CameraModelDb& database, QString& error)
{
    CameraDbIo io(database);
    const CameraDbSettings& settings = database.settings();
    carryUserFileForward(database, io);
    const QString internalFile = settings.internalDBFileName(cameradb::kCurrentVersion);
    if (!loadInternal(io, settings)) {
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

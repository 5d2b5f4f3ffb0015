// SPDX-License-Identifier: Apache-2.0
// loadCameraDatabases(): filling the store at the start of a program.
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <QCryptographicHash>
#include <QDomDocument>
#include <QFile>
#include <QSettings>

#include <utility>

namespace lumo {
namespace {

/// Identifies a shipped database.
QString shippedFingerprint()
{
    QFile shipped(cameradb::shippedTextDBPath());
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return shipped.open(QIODevice::ReadOnly) && hash.addData(&shipped)
               ? QString::fromLatin1(hash.result().toHex())
               : QString();
}

/// Whether the internal file was made of the database that this library ships: one
/// that an older version left knows fewer cameras.
bool madeOfShipped(const CameraDbSettings& settings, const QString& key)
{
    return !settings.appSettings ||
           settings.appSettings->value(key).toString() == shippedFingerprint();
}

/// Loads the internal file, making it anew where it is needed.
bool loadInternalFile(CameraDbIo& io, const CameraDbSettings& settings)
{
    const QString internalFile = settings.internalDBFileName(cameradb::kCurrentVersion);
    const QString key =
        cameradb::settingsPath(QStringLiteral("shippedDatabase"), cameradb::kCurrentVersion);
    if (madeOfShipped(settings, key) && io.loadXML(internalFile, QString())) {
        return true;
    }
    if (!settings.appSettings || !io.loadAndSaveInternalTextDB(QString())) {
        return false;
    }
    settings.appSettings->setValue(key, shippedFingerprint());
    settings.appSettings->sync();
    // The text has more digits than the file, and every later start reads the file.
    return io.loadXML(internalFile, QString());
}

/// Loads the shipped database as the internal file would give it, without any file.
bool loadShipped(CameraModelDb& database, QString& error)
{
    cameradb::CameraDBData text;
    cameradb::CameraDBData data;
    QString content;
    QDomDocument document;
    bool modified = false;
    if (!cameradb::loadTextDB(cameradb::shippedTextDBPath(), text, error) ||
        !cameradb::documentText({}, text, content, error) ||
        !xml::domFromString(content, document, error) ||
        !cameradb::getXML(document, false, false, true, data, modified)) {
        return false;
    }
    database.setInternalData(std::move(data));
    return true;
}

bool loadInternal(CameraModelDb& database, CameraDbIo& io, QString& error)
{
    const CameraDbSettings& settings = database.settings();
    if (!settings.dataDirectory.isEmpty() && loadInternalFile(io, settings)) {
        return true;
    }
    QString reason;
    if (!loadShipped(database, reason)) {
        error = QStringLiteral("the internal camera database cannot be made: ") + reason;
        return false;
    }
    if (!settings.dataDirectory.isEmpty()) {
        log::warning() << QStringLiteral(
                              "'%1' cannot be used, the shipped database is held in memory")
                              .arg(settings.internalDBFileName(cameradb::kCurrentVersion));
    }
    return true;
}

/// Loads the user file if there is one. Saving would lose what of it is not held.
bool loadUser(CameraDbIo& io, CameraModelDb& database, QString& error)
{
    const QString file = database.settings().userDBLoadFileName(cameradb::kCurrentVersion);
    if (!database.enabledUserDB() || !file::exists(file)) {
        return true;
    }
    QString fault;
    if (!io.loadXML(QString(), file, fault)) {
        error = QStringLiteral("your own cameras and rigs can neither be used nor changed, "
                               "because their file does not load; the file is left unchanged: ") +
                fault;
    } else if (!database.userData().skipped.isEmpty()) {
        error = QStringLiteral("'%1' contains records that cannot be used: %2. The file is left "
                               "unchanged, and your own cameras and rigs cannot be changed. "
                               "Repair or remove these records")
                    .arg(file, database.userData().skipped.join(QStringLiteral("; ")));
    } else {
        return true;
    }
    database.setUserDBReadOnly(true);
    return false;
}

} // namespace

bool loadCameraDatabases(CameraModelDb& database, QString& error)
{
    CameraDbIo io(database);
    const CameraDbSettings& settings = database.settings();
    if (settings.dataDirectory.isEmpty()) {
        return loadInternal(database, io, error);
    }
    const QString userFile = settings.userDBLoadFileName(cameradb::kCurrentVersion);
    QString fault;
    if (!file::exists(userFile) && !io.loadAndSavePreviousUserXML(fault) && !fault.isEmpty()) {
        database.setUserDBReadOnly(true);
        // Making the folder of the current version would hide the older file for good.
        if (loadShipped(database, error)) {
            error = QStringLiteral("your own database of an older version cannot be converted; "
                                   "the next start tries again. Until then your own cameras and "
                                   "rigs can neither be used nor changed: ") +
                    fault;
        }
        return false;
    }
    return loadInternal(database, io, error) && loadUser(io, database, error);
}

} // namespace lumo

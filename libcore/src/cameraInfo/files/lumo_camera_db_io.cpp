// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"

#include "cameraInfo/document/user_file.h"
#include "cameraInfo/files/camera_db_current_form.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/lumo_text_file_io.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/xml/lumo_xml_validator.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"

#include <QDomDocument>
#include <QSettings>
#include <QTemporaryDir>

#include <utility>

namespace lumo {
namespace {

/// Whether an internal file's text is the one that was generated.
bool matchesStoredHash(const CameraDbSettings& settings, const QString& text)
{
    const unsigned stored = settings.appSettings->value(settings.appSettingsPathHash(), 0).toUInt();
    return stored == qHash(text, 0);
}

bool hasStoredHash(const CameraDbSettings& settings)
{
    return settings.appSettings &&
           settings.appSettings->value(settings.appSettingsPathHash(), 0).toUInt() != 0;
}

/// Whether the user's tables and file may be changed.
bool mayChange(const CameraModelDb& database, QString& error)
{
    if (!database.editingAllowed()) {
        error = database.enabledUserDB() ? QStringLiteral("The user camera database is read-only")
                                         : QStringLiteral("The user camera database is disabled");
        log::important() << error;
    }
    return database.editingAllowed();
}

/// Replaces an older document by its current form.
bool bringUpToDate(const QString& file, QDomDocument& document, QString& error)
{
    const QTemporaryDir folder;
    QString converted;
    QString reason;
    if (!cameradb::currentForm(
            file, folder.filePath(QStringLiteral("converted.xml")), converted, reason) ||
        !xml::domFromFile(converted, document, reason)) {
        log::important() << file + QStringLiteral(":") << reason;
        error = file + QStringLiteral(": ") + reason;
        return false;
    }
    return true;
}

/// Whether the file is to be read: it exists, its database is enabled, and the hash that
/// it is checked with is known.
bool isWanted(const QString& file, bool userDatabase, const CameraModelDb& database, QString& error)
{
    const CameraDbSettings& settings = database.settings();
    if (!file::exists(file)) {
        error = file + QStringLiteral(": no such file");
    } else if (userDatabase && !database.enabledUserDB()) {
        error = QStringLiteral("The user camera database is disabled");
    } else if (!userDatabase && settings.checkInternalHash && !hasStoredHash(settings)) {
        error = file + QStringLiteral(": the settings have no hash of it");
    } else {
        return true;
    }
    return false;
}

/// Parses a database file of a supported version.
bool readDatabase(
    const QString& file, bool userDatabase, TextFileIO& io, QDomDocument& document,
    std::size_t& version, QString& error)
{

    if (!io.readFile(file, !userDatabase, error)) {
        return false;
    }
    QString reason;
    if (!xml::domFromString(io.content(), document, reason)) {
        log::important() << file + QStringLiteral(":") << reason;
        error = file + QStringLiteral(": ") + reason;
        return false;
    }
    version = cameradb::documentVersion(document);
    if (!cameradb::versionSupported(version, userDatabase, true, reason)) {
        log::important() << "Invalid or not supported database version!";
        error = file + QStringLiteral(": ") + reason;
        return false;
    }
    return true;
}

} // namespace

CameraDbIo::CameraDbIo(CameraModelDb& database)
    : m_database(database)
{}

bool CameraDbIo::loadXMLPrivate(
    const QString& file, bool userDatabase, std::size_t& version, bool merge, bool overwrite,
    QString& error)
{
    const CameraDbSettings& settings = m_database.settings();
    TextFileIO io;
    QDomDocument document;
    if (!isWanted(file, userDatabase, m_database, error) ||
        !readDatabase(file, userDatabase, io, document, version, error)) {
        return false;
    }
    const bool checkHash = !userDatabase && settings.checkInternalHash;
    if (checkHash && !matchesStoredHash(settings, io.content())) {
        if (version == cameradb::kCurrentVersion) {
            log::warning() << "The original internal database has been edited manualy. It will be "
                              "restored!";
        }
        error = file + QStringLiteral(": was changed since it was generated");
        return false;
    }
    // The hash is checked first: it belongs to the text as generated.
    if (version < cameradb::kCurrentVersion && !bringUpToDate(file, document, error)) {
        return false;
    }
    cameradb::CameraDBData tables =
        userDatabase ? m_database.userData() : m_database.internalData();
    bool modified = false;
    QString reason;
    if (!cameradb::getXML(document, userDatabase, merge, overwrite, tables, modified, reason)) {
        error = file + QStringLiteral(": ") + reason;
        return false;
    }
    if (!userDatabase) {
        m_database.setInternalData(std::move(tables));
        return true;
    }
    return m_database.setUserData(
        std::move(tables), modified ? version : m_database.userDbVersion());
}

bool CameraDbIo::loadXML(const QString& internalFile, const QString& userFile)
{
    QString unused;
    return loadXML(internalFile, userFile, unused);
}

bool CameraDbIo::loadXML(const QString& internalFile, const QString& userFile, QString& error)
{
    if (internalFile.isEmpty() && userFile.isEmpty()) {
        error = QStringLiteral("no camera database file was given");
        return false;
    }
    if (!internalFile.isEmpty()) {
        m_database.setInternalData({});
    }
    bool userLoaded = true;
    std::size_t version = 0;
    if (!userFile.isEmpty()) {
        if (m_database.enabledUserDB()) { // else there is nothing to empty
            static_cast<void>(m_database.setUserData({}, cameradb::kCurrentVersion));
        }
        QString fault;
        if (!hasDbLastestFormat(userFile, fault)) {
            log::important() << "XSD validation failed with the user camera database";
            log::debug() << userFile + QStringLiteral(":") << fault;
            error = userFile + QStringLiteral(": ") + fault;
            return false;
        }
        userLoaded = loadXMLPrivate(userFile, true, version, false, true, error);
    }
    return (internalFile.isEmpty() ||
            loadXMLPrivate(internalFile, false, version, false, true, error)) &&
           userLoaded;
}

bool CameraDbIo::addUserXML(const QString& file, bool overwrite)
{
    QString unused;
    return addUserXML(file, overwrite, unused);
}

bool CameraDbIo::addUserXML(const QString& file, bool overwrite, QString& error)
{
    std::size_t version = 0;
    return mayChange(m_database, error) &&
           loadXMLPrivate(file, true, version, true, overwrite, error);
}

bool CameraDbIo::loadAndSaveInternalTextDB(const QString& textFile)
{
    QString unused;
    return loadAndSaveInternalTextDB(textFile, unused);
}

bool CameraDbIo::loadAndSaveInternalTextDB(const QString& textFile, QString& error)
{
    const CameraDbSettings& settings = m_database.settings();
    if (!settings.appSettings || settings.dataDirectory.isEmpty()) {
        error = settings.appSettings
                    ? QStringLiteral(
                          "A data directory is required for converting camDB from CSV to XML")
                    : QStringLiteral(
                          "Application settings are required for converting camDB from CSV to XML");
        log::important() << error;
        return false;
    }
    unsigned hash = 0;
    if (!loadTextDB(textFile, false, error) ||
        !exportXML(settings.internalDBFileName(cameradb::kCurrentVersion), true, hash, error)) {
        return false;
    }
    // Without a hash the file of an empty database is rewritten at the next start.
    if (!m_database.internalData().cameras.empty()) {
        settings.appSettings->setValue(settings.appSettingsPathHash(), hash);
        if (textFile.isEmpty()) {
            settings.appSettings->remove(settings.appSettingsPathDate());
        }
        // A hash that is not on the disk would make the file look edited.
        settings.appSettings->sync();
    }
    return true;
}

bool CameraDbIo::loadTextDB(const QString& textFile, bool userDatabase)
{
    QString unused;
    return loadTextDB(textFile, userDatabase, unused);
}

bool CameraDbIo::loadTextDB(const QString& textFile, bool userDatabase, QString& error)
{
    cameradb::CameraDBData data;
    if (!cameradb::loadTextDB(
            textFile.isEmpty() ? cameradb::shippedTextDBPath() : textFile, data, error)) {
        log::important() << error;
        return false;
    }
    if (!userDatabase) {
        m_database.setInternalData(std::move(data));
        return true;
    }
    if (!m_database.setUserData(std::move(data), cameradb::kCurrentVersion)) {
        error = QStringLiteral("The user camera database is disabled");
        return false;
    }
    return true;
}

bool CameraDbIo::saveUserXML() const
{
    QString unused;
    return saveUserXML(unused);
}

bool CameraDbIo::saveUserXML(QString& error) const
{
    return mayChange(m_database, error) &&
           cameradb::writeUserFile(m_database.settings(), m_database.userData(), error);
}

bool CameraDbIo::exportXML(
    const QString& file, bool internalOnly, unsigned& hash, QString& error) const
{
    if (file.isEmpty()) {
        error = QStringLiteral("no output file was given for the camera database");
        return false;
    }
    const cameradb::CameraDBData& tables =
        internalOnly ? m_database.internalData() : m_database.userData();
    return cameradb::writeTables(m_database.settings(), tables, file, !internalOnly, hash, error);
}

bool CameraDbIo::exportUserXML(const QString& file) const
{
    QString unused;
    return exportUserXML(file, unused);
}

bool CameraDbIo::exportUserXML(const QString& file, QString& error) const
{
    unsigned hash = 0;
    return exportXML(file, false, hash, error);
}

bool CameraDbIo::clearUserXML()
{
    QString unused;
    return clearUserXML(unused);
}

bool CameraDbIo::clearUserXML(QString& error)
{
    if (!mayChange(m_database, error)) {
        return false;
    }
    return m_database.userData().empty() ||
           (m_database.setUserData({}, cameradb::kCurrentVersion) && saveUserXML(error));
}

QString cameraDbSchemaPath()
{
    return system::applicationDirectory() + QStringLiteral("/resources/xsd/camDB_2_2.xsd");
}

bool hasDbLastestFormat(const QString& file)
{
    QString unused;
    return hasDbLastestFormat(file, unused);
}

bool hasDbLastestFormat(const QString& file, QString& error)
{
    xml::XmlValidator validator;
    QString reason;
    if (!validator.loadXsd(cameraDbSchemaPath(), reason)) {
        error =
            QStringLiteral("the schema '%1' cannot be used: %2").arg(cameraDbSchemaPath(), reason);
        return false;
    }
    return validator.validateXml(file, error);
}

} // namespace lumo

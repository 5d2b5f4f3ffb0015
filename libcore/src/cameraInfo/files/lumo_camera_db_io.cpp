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

/// Whether the user's tables and file may be changed; if not, the log says so.
bool mayChange(const CameraModelDb& database)
{
    if (!database.editingAllowed()) {
        log::important()
            << (database.enabledUserDB() ? "The user camera database is read-only"
                                         : "The user camera database is disabled");
    }
    return database.editingAllowed();
}

/// Puts the current form of an older document in its place.
bool bringUpToDate(const QString& file, QDomDocument& document)
{
    const QTemporaryDir folder;
    QString converted;
    QString error;
    if (!cameradb::currentForm(
            file, folder.filePath(QStringLiteral("converted.xml")), converted, error) ||
        !xml::domFromFile(converted, document, error)) {
        log::important() << file + QStringLiteral(":") << error;
        return false;
    }
    return true;
}

} // namespace

CameraDbIo::CameraDbIo(CameraModelDb& database)
    : m_database(database)
{}

bool CameraDbIo::loadXMLPrivate(
    const QString& file, bool userDatabase, std::size_t& version, bool merge, bool overwrite)
{
    const CameraDbSettings& settings = m_database.settings();
    const bool checkHash = !userDatabase && settings.checkInternalHash;
    if (!file::exists(file) || (userDatabase && !m_database.enabledUserDB()) ||
        (checkHash && !hasStoredHash(settings))) {
        return false;
    }
    TextFileIO io;
    if (!io.readFile(file, !userDatabase)) {
        return false;
    }
    QDomDocument document;
    QString error;
    if (!xml::domFromString(io.content(), document, error)) {
        log::important() << file + QStringLiteral(":") << error;
        return false;
    }
    version = cameradb::documentVersion(document);
    if (!cameradb::versionSupported(version, userDatabase, true)) {
        log::important() << "Invalid or not supported database version!";
        return false;
    }
    if (checkHash && !matchesStoredHash(settings, io.content())) {
        if (version == cameradb::kCurrentVersion) {
            log::warning() << "The original internal database has been edited manualy. It will be "
                              "restored!";
        }
        return false;
    }
    if (version < cameradb::kCurrentVersion && !bringUpToDate(file, document)) {
        return false;
    }
    cameradb::CameraDBData tables =
        userDatabase ? m_database.userData() : m_database.internalData();
    bool modified = false;
    if (!cameradb::getXML(document, userDatabase, merge, overwrite, tables, modified)) {
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
    if (internalFile.isEmpty() && userFile.isEmpty()) {
        return false;
    }
    if (!internalFile.isEmpty()) {
        m_database.setInternalData({});
    }
    bool userLoaded = true;
    std::size_t version = 0;
    if (!userFile.isEmpty()) {
        if (m_database.enabledUserDB() && !m_database.setUserData({}, cameradb::kCurrentVersion)) {
            return false;
        }
        QString fault;
        if (!hasDbLastestFormat(userFile, fault)) {
            log::important() << "XSD validation failed with the user camera database";
            log::debug() << userFile + QStringLiteral(":") << fault;
            return false;
        }
        userLoaded = loadXMLPrivate(userFile, true, version, false, true);
    }
    if (!internalFile.isEmpty() && !loadXMLPrivate(internalFile, false, version, false, true)) {
        return false;
    }
    return userLoaded;
}

bool CameraDbIo::addUserXML(const QString& file, bool overwrite)
{
    if (!mayChange(m_database)) {
        return false;
    }
    std::size_t version = 0;
    return loadXMLPrivate(file, true, version, true, overwrite);
}

bool CameraDbIo::loadAndSaveInternalTextDB(const QString& textFile)
{
    const CameraDbSettings& settings = m_database.settings();
    if (!settings.appSettings) {
        log::important()
            << "Application settings are required for converting camDB from CSV to XML";
        return false;
    }
    if (settings.dataDirectory.isEmpty()) {
        log::important() << "A data directory is required for converting camDB from CSV to XML";
        return false;
    }
    unsigned hash = 0;
    if (!loadTextDB(textFile, false) ||
        !exportXML(settings.internalDBFileName(cameradb::kCurrentVersion), true, hash)) {
        return false;
    }
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
    cameradb::CameraDBData data;
    QString error;
    if (!cameradb::loadTextDB(
            textFile.isEmpty() ? cameradb::shippedTextDBPath() : textFile, data, error)) {
        log::important() << error;
        return false;
    }
    if (userDatabase) {
        return m_database.setUserData(std::move(data), cameradb::kCurrentVersion);
    }
    m_database.setInternalData(std::move(data));
    return true;
}

bool CameraDbIo::saveUserXML() const
{
    return mayChange(m_database) &&
           cameradb::writeUserFile(m_database.settings(), m_database.userData());
}

bool CameraDbIo::exportXML(const QString& file, bool internalOnly, unsigned& hash) const
{
    const cameradb::CameraDBData& tables =
        internalOnly ? m_database.internalData() : m_database.userData();
    return !file.isEmpty() &&
           cameradb::writeTables(m_database.settings(), tables, file, !internalOnly, hash);
}

bool CameraDbIo::exportUserXML(const QString& file) const
{
    unsigned hash = 0;
    return exportXML(file, false, hash);
}

bool CameraDbIo::clearUserXML()
{
    if (!mayChange(m_database)) {
        return false;
    }
    if (m_database.userData().empty()) {
        return true;
    }
    return m_database.setUserData({}, cameradb::kCurrentVersion) && saveUserXML();
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

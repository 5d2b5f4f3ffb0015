// SPDX-License-Identifier: Apache-2.0
// CameraDbIo: carrying the user file of an older version forward.
#include "cameraInfo/files/camera_db_current_form.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/text.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace lumo {
namespace {

/// The version folders' names, oldest first.
QStringList versionFolders(const QString& dataDirectory)
{
    QStringList folders =
        QDir(dataDirectory).entryList(QDir::Dirs | QDir::Readable | QDir::NoDotAndDotDot);
    std::sort(folders.begin(), folders.end(), [](const QString& a, const QString& b) {
        return text::localeAwareCompare(a, b) < 0;
    });
    return folders;
}

/// The version that a folder is named by.
bool versionOf(const QString& folder, std::size_t& version)
{
    bool isNumber = false;
    const int number = text::fromString<int>(folder, &isNumber);
    if (!isNumber || number < 0) {
        return false;
    }
    version = static_cast<std::size_t>(number);
    return true;
}

/// The newest user file of an older version. Empty if there is none, or if a folder
/// of the current version, or of a newer one, is there: then the start has passed it.
QString olderUserFile(const CameraDbSettings& settings, const QStringList& folders)
{
    QString newest;
    for (const QString& folder : folders) {
        std::size_t version = 0;
        if (!versionOf(folder, version)) {
            continue;
        }
        if (version >= cameradb::kCurrentVersion) {
            return {};
        }
        const QString file = settings.userDBLoadFileName(version);
        newest = file::exists(file) ? file : newest;
    }
    return newest;
}

/// Makes `target` the current form of `source`, if that satisfies the schema.
bool convertFile(const QString& source, const QString& target, QString& error)
{
    if (!file::exists(source)) {
        error = QStringLiteral("there is no '%1'").arg(source);
        return false;
    }
    QString document;
    if (!cameradb::currentForm(source, target, document, error) ||
        (document == source && !file::copy(source, target, error))) {
        return false;
    }
    QString fault;
    if (!hasDbLastestFormat(target, fault)) {
        error = (document == source ? QString() : QStringLiteral("after conversion: ")) + fault;
        return false;
    }
    return true;
}

/// Renames `source` to the folder of the user file `userFile`.
/// \returns whether that file is there afterwards: another process may have been faster
bool moveFolder(const QString& source, const QString& userFile, QString& error)
{
    const QString target = file::dirname(userFile);
    std::error_code code;
    std::filesystem::rename(
        QFile::encodeName(source).toStdString(), QFile::encodeName(target).toStdString(), code);
    if (code && !file::exists(userFile)) {
        error = QStringLiteral("'%1' cannot be made: %2")
                    .arg(target, QString::fromStdString(code.message()));
        return false;
    }
    return true;
}

} // namespace

bool CameraDbIo::convertUserFile(std::size_t version, QString& error)
{
    const CameraDbSettings& settings = m_database.settings();
    const QString target = settings.userDBLoadFileName(cameradb::kCurrentVersion);
    // The folder appears with the file in it, or not at all: once it is there, the
    // older ones are not looked at any more.
    const QTemporaryDir beside(file::join(settings.dataDirectory, QStringLiteral(".lumo-XXXXXX")));
    const QString folder = beside.filePath(file::filename(file::dirname(target)));
    if (!beside.isValid() || !file::mkdir(folder)) {
        log::important() << "Error creating output directory for converting the user camera "
                            "database file";
        error = beside.isValid() ? QStringLiteral("'%1' cannot be made").arg(folder)
                                 : beside.errorString();
        return false;
    }
    log::step() << "Converting user camera-db file with version" << version << "to latest version";
    const QString converted = file::join(folder, file::filename(target));
    if (!convertFile(settings.userDBLoadFileName(version), converted, error)) {
        log::important() << "Error trying to convert user camera database to latest format";
        return false;
    }
    std::size_t loaded = 0;
    QString reason;
    if (m_database.enabledUserDB() &&
        !loadXMLPrivate(converted, true, loaded, false, true, reason)) {
        error = QStringLiteral("after conversion: ") +
                text::withoutPrefix(reason, converted + QStringLiteral(": "));
        return false;
    }
    return moveFolder(folder, target, error);
}

bool CameraDbIo::loadAndSavePreviousUserXML()
{
    QString error;
    const bool loaded = loadAndSavePreviousUserXML(error);
    if (!error.isEmpty()) {
        log::important() << error;
    }
    return loaded;
}

bool CameraDbIo::loadAndSavePreviousUserXML(QString& error)
{
    if (m_database.enabledUserDB() && !m_database.setUserData({}, cameradb::kCurrentVersion)) {
        return false;
    }
    const CameraDbSettings& settings = m_database.settings();
    if (settings.dataDirectory.isEmpty()) {
        log::important()
            << "A data directory is required for carrying a user camera database forward";
        return false;
    }
    const QStringList folders = versionFolders(settings.dataDirectory);
    if (folders.isEmpty()) {
        return false;
    }
    const QString older = olderUserFile(settings, folders);
    const auto fail = [&](const QString& reason) {
        static_cast<void>(m_database.setUserData({}, cameradb::kCurrentVersion));
        if (!older.isEmpty()) {
            error = older + QStringLiteral(": ") + reason;
        }
        return false;
    };
    std::size_t version = 0;
    if (!versionOf(folders.last(), version)) {
        const QString reason = QStringLiteral("Unexpected folders in data-common directory. Remove "
                                              "the folders created manually.");
        log::important() << reason;
        return fail(reason);
    }
    if (version >= cameradb::kCurrentVersion) {
        return false;
    }
    QString reason;
    if (!convertUserFile(version, reason)) {
        return fail(reason);
    }
    return loadXMLPrivate(
        settings.userDBLoadFileName(cameradb::kCurrentVersion), true, version, false, true, error);
}

} // namespace lumo

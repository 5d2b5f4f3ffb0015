// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/xml/camera_db_converter.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/text.h"

#include <QDir>

#include <algorithm>
#include <stdexcept>

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

bool convertFile(const QString& source, const QString& target)
{
    try {
        CameraDbConverter converter(source);
        return !converter.needsConvertion() || converter.convert(target);
    } catch (const std::runtime_error& fault) {
        log::important() << source + QStringLiteral(":") << fault.what();
        return false;
    }
}

} // namespace

bool CameraDbIo::convertUserFile(std::size_t version) const
{
    const CameraDbSettings& settings = m_database.settings();
    const QString source = settings.userDBLoadFileName(version);
    const QString target = settings.userDBLoadFileName(cameradb::kCurrentVersion);
    if (!file::mkdir(file::dirname(target))) {
        log::important() << "Error creating output directory for converting the user camera "
                            "database file";
        return false;
    }
    log::important() << "Converting user camera-db file with version" << version
                     << "to latest version";
    if (!convertFile(source, target)) {
        log::important() << "Error trying to convert user camera database to latest format";
        return false;
    }
    return true;
}

bool CameraDbIo::loadAndSavePreviousUserXML()
{
    if (m_database.enabledUserDB() && !m_database.setUserData({}, cameradb::kCurrentVersion)) {
        return false;
    }
    const CameraDbSettings& settings = m_database.settings();
    const QStringList folders = versionFolders(settings.dataDirectory);
    if (folders.isEmpty()) {
        return false;
    }
    bool isNumber = false;
    const int version = text::fromString<int>(folders.last(), &isNumber);
    if (!isNumber || version < 0) {
        log::important() << "Unexpected folders in data-common directory. Remove the folders "
                            "created manually.";
        return false;
    }
    const auto older = static_cast<std::size_t>(version);
    if (older >= cameradb::kCurrentVersion || !convertUserFile(older)) {
        return false;
    }
    std::size_t loadedVersion = 0;
    return loadXMLPrivate(
        settings.userDBLoadFileName(cameradb::kCurrentVersion), true, loadedVersion, false, true);
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_settings.h"

#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/foundation/file.h"

namespace lumo {
namespace {

QString inVersionFolder(const QString& dataDirectory, const char* form, std::size_t version)
{
    return file::cleanup(dataDirectory + QString::fromLatin1(form).arg(version));
}

} // namespace

QString cameradb::settingsPath(const QString& key, std::size_t version)
{
    return QStringLiteral("cameraDB/%1/%2").arg(QString::number(version), key);
}

QString CameraDbSettings::appSettingsPathHash() const
{
    return appSettings ? cameradb::settingsPath(hashKey, cameradb::kCurrentVersion) : QString();
}

QString CameraDbSettings::appSettingsPathDate() const
{
    return appSettings ? cameradb::settingsPath(dateKey, cameradb::kCurrentVersion) : QString();
}

QString CameraDbSettings::internalDBFileName(std::size_t version) const
{
    return inVersionFolder(dataDirectory, "/%1/icmdb.xml", version);
}

QString CameraDbSettings::userDBLoadFileName(std::size_t version) const
{
    return inVersionFolder(dataDirectory, "/%1/ucmdb.xml", version);
}

} // namespace lumo

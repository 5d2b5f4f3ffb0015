// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

class QSettings;

namespace lumo {

namespace cameradb {

/// The settings key "cameraDB/<version>/<key>".
[[nodiscard]] LUMO_CORE_EXPORT QString settingsPath(const QString& key, std::size_t version);

} // namespace cameradb

/// The paths of the camera database files and the settings that go with them.
/// A value; the settings objects are shared, not copied.
struct LUMO_CORE_EXPORT CameraDbSettings
{
    std::shared_ptr<QSettings> appSettings;    ///< stores the internal file's hash; may be null
    std::shared_ptr<QSettings> secondSettings; ///< may name the user file; may be null
    QString hashKey = QStringLiteral("ICH");
    QString dateKey = QStringLiteral("interCameraDBDate");
    QString userDbKey = QStringLiteral("userCameraDB");
    QString dataDirectory; ///< contains one folder per database version
    /// Written after the version in every saved document: names and values.
    std::vector<std::pair<QString, QString>> headerPairs;
    bool checkInternalHash = false; ///< the internal file must match its stored hash

    /// Settings keys for the current version; empty without application settings.
    [[nodiscard]] QString appSettingsPathHash() const;
    [[nodiscard]] QString appSettingsPathDate() const;

    /// "<data directory>/<version>/icmdb.xml", cleaned up.
    [[nodiscard]] QString internalDBFileName(std::size_t version) const;
    /// "<data directory>/<version>/ucmdb.xml", cleaned up.
    [[nodiscard]] QString userDBLoadFileName(std::size_t version) const;
};

} // namespace lumo

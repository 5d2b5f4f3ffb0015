// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/cameraInfo/camera_db_settings.h"

#include <QString>

namespace lumo::cameradb {

/// Writes tables as a database document, and creates its folder. Logs failures.
/// \param lock  keep a FileLock while the file is written
/// \param[out] hash  on success the hash of the written text, else untouched
/// \param[out] error  on failure "FILE: reason", else untouched
[[nodiscard]] bool writeTables(
    const CameraDbSettings& settings, const CameraDBData& tables, const QString& file, bool lock,
    unsigned& hash, QString& error);

/// Writes the user tables to the user file of the current version, and sets the key of
/// that file in the second settings. Failures are logged.
/// \param[out] error  on failure "FILE: reason", or that there is no data directory
[[nodiscard]] bool writeUserFile(
    const CameraDbSettings& settings, const CameraDBData& userTables, QString& error);

} // namespace lumo::cameradb

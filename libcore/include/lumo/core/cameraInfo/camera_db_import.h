// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

class CameraModelDb;

/// Merges a camera database file into the user's tables in memory. A file name
/// that ends in ".csv" is read as a text database, any other as an XML document.
/// An XML document of an older version is converted first. Nothing is saved.
/// \param overwrite  entries of the file replace the user's of the same name;
///     else the user's entries stay
/// \param[out] error  on failure what failed, else untouched; details are logged
/// \returns false on failure; the tables are then unchanged
[[nodiscard]] LUMO_CORE_EXPORT bool importUserDatabase(
    CameraModelDb& database, const QString& file, bool overwrite, QString& error);

} // namespace lumo

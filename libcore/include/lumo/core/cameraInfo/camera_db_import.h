// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

namespace lumo {

class CameraModelDb;

/// Merges a camera database into the user's tables: an XML document of any
/// version, which is converted first, or a text database (by its name's end,
/// ".csv"). Nothing is saved.
/// \param overwrite  its entries replace those of the same name
/// \param[out] error  on failure what failed, else untouched; details are logged
/// \returns false, with the tables as they were, on failure
[[nodiscard]] LUMO_CORE_EXPORT bool importUserDatabase(
    CameraModelDb& database, const QString& file, bool overwrite, QString& error);

} // namespace lumo

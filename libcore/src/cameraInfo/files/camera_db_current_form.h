// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo::cameradb {

/// Converts a camera database document to the current format version if it is older.
/// \param target  path of the converted document
/// \param[out] document  on success the document of the current version: `file`, or
///     `target` after a conversion; else untouched
/// \param[out] error  on failure why, with the line if known; else untouched
[[nodiscard]] bool currentForm(
    const QString& file, const QString& target, QString& document, QString& error);

} // namespace lumo::cameradb

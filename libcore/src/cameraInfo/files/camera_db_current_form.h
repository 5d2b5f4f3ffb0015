// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo::cameradb {

/// Finds or makes the form that a camera database document has in the current
/// format version.
/// \param target  where it is made if `file` is of an older version
/// \param[out] document  on success `file` or `target`, else untouched
/// \param[out] error  on failure why, with the line where it is known; else untouched
[[nodiscard]] bool currentForm(
    const QString& file, const QString& target, QString& document, QString& error);

} // namespace lumo::cameradb

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

// What file.cpp and file_writing.cpp share.

namespace lumo::file {

/// Template (for QTemporaryFile) of the name of a file that is not whole yet. The file
/// is in the target's folder, since a rename cannot cross file systems.
inline const auto kTemporaryName = QStringLiteral(".lumo-XXXXXX");

/// The path that a chain of links at `path` ends at, whether or not a file exists there.
[[nodiscard]] QString linkTarget(const QString& path);

} // namespace lumo::file

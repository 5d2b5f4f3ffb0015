// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <vector>

namespace lumo::xml {

/// The path, below the application directory, of the folder with one folder of schemas
/// for each format version. The folder may be missing.
[[nodiscard]] QString schemasFolder();

/// The format versions with a folder in schemasFolder(), smallest first. A name that is
/// not a number counts as 0.
[[nodiscard]] std::vector<int> schemaVersions();

} // namespace lumo::xml

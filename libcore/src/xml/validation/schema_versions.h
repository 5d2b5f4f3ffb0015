// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <vector>

namespace lumo::xml {

/// The folder with a folder of schemas for each format version, below the application
/// directory. It need not be there.
[[nodiscard]] QString schemasFolder();

/// The numbers that the folders in it have for names, smallest first; 0 for other names.
[[nodiscard]] std::vector<int> schemaVersions();

} // namespace lumo::xml

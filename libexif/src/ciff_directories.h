// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstddef>

namespace lumo::exif {

/// Why the directories of a CIFF file (Canon's CRW) are too expensive to read; empty if
/// they are not. Entries may refer to the same bytes as a directory again and again, so
/// that a file of 1 KB can take a reader for ever; exiv2 goes through them all.
[[nodiscard]] QString expensiveDirectories(const unsigned char* data, std::size_t size);

} // namespace lumo::exif

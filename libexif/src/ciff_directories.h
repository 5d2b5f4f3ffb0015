// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstddef>

namespace lumo::exif {

/// Whether the directories of a CIFF file (Canon's CRW) are cheap to read. Entries may refer
/// to the same bytes as a directory again and again, so that a file of 1 KB can take a
/// reader for ever; exiv2 goes through them all.
/// \param[out] error  if they are not, why; else untouched
[[nodiscard]] bool directoriesAreCheap(const unsigned char* data, std::size_t size, QString& error);

} // namespace lumo::exif

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <cstddef>

/// Values of rigs whose meaning differs in old camera databases, translated to the
/// current meaning. `version` is the format version of the enclosing document.
namespace lumo::xml {

/// The EXIF string that a rig has for all of its cameras.
[[nodiscard]] QString rigExifString(QString stored, std::size_t version);

/// The reference camera's number in its rig.
[[nodiscard]] std::size_t referenceCameraIndex(
    std::size_t stored, const QString& rigName, std::size_t version);

} // namespace lumo::xml

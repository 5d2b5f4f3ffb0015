// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

/// The source version, commit and compiler of this build of the library. The texts
/// are static and never null.
namespace lumo::core::build {

[[nodiscard]] LUMO_CORE_EXPORT const char* version();  ///< such as "0.1.0"
[[nodiscard]] LUMO_CORE_EXPORT const char* commit();   ///< short hash, "unknown" outside a checkout
[[nodiscard]] LUMO_CORE_EXPORT const char* compiler(); ///< name and version

} // namespace lumo::core::build

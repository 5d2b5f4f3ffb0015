// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QString>

namespace lumo::system {

/// Logical processors of this machine, at least 1.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int noLogicalCPUs();

/// Installed memory in GiB, rounded to the nearest, at least 1.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int installedRAMGB();

/// The folder below which data files (schemas, stylesheets) are found: that of
/// the running program, unless another one was set. Needs a QCoreApplication
/// when none was set.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString applicationDirectory();

/// For applications that are installed elsewhere than their data, and for tests.
/// An empty path brings back the default. To be called before threads start.
LUMO_FOUNDATION_EXPORT void setApplicationDirectory(const QString& directory);

} // namespace lumo::system

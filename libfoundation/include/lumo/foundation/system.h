// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QString>

namespace lumo::system {

/// Logical processors that this process may use, at least 1: fewer than the machine
/// has where the process is bound to some of them, or a control group (a container's,
/// say) grants less. system_limits.h tells which.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int noLogicalCPUs();

/// Memory that this process may use, in GiB, at least 1: what is installed, rounded to
/// the nearest, or what a control group grants, rounded down.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int installedRAMGB();

/// The folder below which data files (schemas, stylesheets) are found: that of
/// the running program, unless another one was set. Needs a QCoreApplication
/// when none was set.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString applicationDirectory();

/// For applications that are installed elsewhere than their data, and for tests.
/// An empty path brings back the default. To be called before threads start.
LUMO_FOUNDATION_EXPORT void setApplicationDirectory(const QString& directory);

} // namespace lumo::system

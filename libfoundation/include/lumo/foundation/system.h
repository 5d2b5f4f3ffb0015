// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <QString>

namespace lumo::system {

/// Logical processors that this process may use, at least 1. Less than the machine's
/// number if the process is bound to some processors or a control group (such as a
/// container's) grants less; cpuLimit() in system_limits.h reports the source.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int noLogicalCPUs();

/// Memory that this process may use, in GiB, at least 1: the installed memory rounded
/// to the nearest GiB, or the limit of a control group rounded down.
[[nodiscard]] LUMO_FOUNDATION_EXPORT int installedRAMGB();

/// The folder below which data files (schemas, stylesheets) are found: that of
/// the running program, unless another one was set. Needs a QCoreApplication
/// when none was set.
[[nodiscard]] LUMO_FOUNDATION_EXPORT QString applicationDirectory();

/// Sets the folder that applicationDirectory() returns, for applications whose data
/// files are not beside the program, and for tests. An empty path restores the
/// default. Call it before other threads start: it is not synchronised.
LUMO_FOUNDATION_EXPORT void setApplicationDirectory(const QString& directory);

} // namespace lumo::system

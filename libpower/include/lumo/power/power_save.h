// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/power/export.h"

namespace lumo::system {

/// Prevents the operating system from going to sleep when there is no user input, until
/// enablePowerSave() or the end of the process (even if it is killed). Does nothing if
/// sleep is prevented already. Waits for the system's answer, at most 5 seconds: a login
/// manager that hangs must not delay the work longer. If the system refuses, logs the
/// reason as a warning, and again only after the reason changed or a call succeeded.
///
/// Both functions act on the whole process and do not count their calls. They may be
/// called from any thread.
LUMO_POWER_EXPORT void disablePowerSave();

/// Allows the operating system to sleep again. Does nothing if sleep is not prevented.
LUMO_POWER_EXPORT void enablePowerSave();

} // namespace lumo::system

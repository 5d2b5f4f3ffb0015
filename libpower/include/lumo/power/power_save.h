// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/power/export.h"

namespace lumo::system {

/// Keeps the operating system from going to sleep for want of input, until
/// enablePowerSave() or the end of the process, however it ends. Does nothing if it
/// is kept from it already. Returns when the system has answered, after 5 seconds at
/// most. A system that refuses is no failure: the work goes on, and the reason is
/// logged as a warning, once until another one comes or the system grants it.
///
/// These are switches, not counters, for the whole process. Both may be called from
/// any thread, also from another one than the other.
LUMO_POWER_EXPORT void disablePowerSave();

/// Lets the operating system sleep again. Does nothing if it may already.
LUMO_POWER_EXPORT void enablePowerSave();

} // namespace lumo::system

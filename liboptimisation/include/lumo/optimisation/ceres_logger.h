// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/optimisation/export.h"

namespace lumo::optimization {

/// From now on what solvers say through glog is in the application's log, with
/// the file and line it comes from: information as Info, warnings as Warning,
/// errors and fatal errors as Important.
///
/// If nobody has initialised glog before, this does, and glog writes no files
/// of its own then, and to the standard error stream only what ends the
/// process. Where an application has initialised it, its choices stand.
///
/// May be called from any thread and any number of times; glog itself must not
/// be initialised or shut down meanwhile.
LUMO_OPTIMISATION_EXPORT void initCeresLumoLogger();

} // namespace lumo::optimization

// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/service.h"

namespace lumo {

// Here, so that the class is emitted once.
Service::Service() = default;
Service::~Service() = default;

} // namespace lumo

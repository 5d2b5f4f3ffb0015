// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

namespace lumo {

/// Base of all services of the process. CoreServices owns one of each, as long as
/// the process lives. A service cannot be copied.
class LUMO_CORE_EXPORT Service
{
public:
    Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    virtual ~Service();
};

} // namespace lumo

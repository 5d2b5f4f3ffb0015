// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"

namespace lumo {

/// Whether a configuration delivers `count` bands, with or without its garbage.
inline bool hasBandCount(const bands_t& config, std::size_t count)
{
    return config.size() == count || config.size() - config.garbageBandCount() == count;
}

} // namespace lumo

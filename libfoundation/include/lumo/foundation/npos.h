// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <limits>

namespace lumo {

/// In place of an index: none, or nothing found.
inline constexpr std::size_t npos = std::numeric_limits<std::size_t>::max();

} // namespace lumo

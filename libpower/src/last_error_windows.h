// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace lumo::power {

/// What the calling thread's last error means, in the user's language and UTF-8,
/// with its number; never empty.
[[nodiscard]] std::string getLastErrorAsString();

} // namespace lumo::power

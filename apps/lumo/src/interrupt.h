// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace lumo::program {

/// Makes Ctrl-C ask for a stop instead of ending the process; a second Ctrl-C
/// ends it.
void catchInterrupt();

/// Whether a stop was asked for.
[[nodiscard]] bool interrupted();

} // namespace lumo::program

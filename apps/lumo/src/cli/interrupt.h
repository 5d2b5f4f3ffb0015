// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace lumo::program {

/// Makes Ctrl-C ask the progress service for a stop instead of ending the
/// process; a second Ctrl-C ends it.
void catchInterrupt();

} // namespace lumo::program

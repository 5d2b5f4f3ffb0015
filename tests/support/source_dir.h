// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// A path within the source tree; without a name the tree itself. A function, and no
/// macro, so that objects do not depend on where the tree is and compiler caches serve
/// every checkout.
[[nodiscard]] QString sourcePath(const char* name = nullptr);

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>

namespace lumo {

/// Whether a camera may have this name: 1 to 255 characters, no control
/// characters, none of / \ < > & " ', and not "none".
[[nodiscard]] LUMO_CAMERADATA_EXPORT bool validCameraName(const QString& name);

} // namespace lumo

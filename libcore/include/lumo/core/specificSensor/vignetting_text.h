// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/vignetting_data.h"
#include "lumo/core/export.h"

#include <QString>

namespace lumo {

/// The coefficients in storage order with 6 significant digits, separated by
/// commas; empty if there are none.
[[nodiscard]] LUMO_CORE_EXPORT QString vignetting2string(const VignettingData& vignetting);

/// Makes a polynomial model with the numbers of the text as its one column. A part
/// that is not a number counts as 0; a comma at the end adds nothing.
[[nodiscard]] LUMO_CORE_EXPORT VignettingData string2vignetting(const QString& text);

} // namespace lumo

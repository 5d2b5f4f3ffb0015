// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace lumo::program {

/// Pixel sizes are kept in mm and shown in um.
constexpr double kMicrometresPerMillimetre = 1000.0;

/// A number as it is shown: with as many digits as the evidence carries.
[[nodiscard]] double shownNumber(double value);

} // namespace lumo::program

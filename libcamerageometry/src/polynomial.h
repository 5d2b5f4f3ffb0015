// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <vector>

namespace lumo {

/// c[0] + c[1] x + c[2] x^2 + ...; 0 without coefficients.
[[nodiscard]] double polynomialValue(std::span<const double> coefficients, double x);

/// The coefficients of the derivative, one less.
[[nodiscard]] std::vector<double> polynomialDerivative(std::span<const double> coefficients);

/// The largest x <= upper such that the polynomial is positive in all of
/// [lower, x); `lower` if it is not positive there.
[[nodiscard]] double endOfPositiveRange(
    std::span<const double> coefficients, double lower, double upper);

} // namespace lumo

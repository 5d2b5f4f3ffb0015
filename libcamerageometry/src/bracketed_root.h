// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cmath>
#include <limits>
#include <numeric>

namespace lumo::detail {

/// A value of a function and its slope there.
struct ValueAndSlope
{
    double value;
    double slope;
};

/// The root of a function that is negative below it and positive above it, to
/// rounding: Newton steps, replaced by bisection where they would leave what
/// is left of the interval.
/// \param function  double -> ValueAndSlope; f(lower) <= 0 <= f(upper)
/// \param start  in [lower, upper], the closer to the root the better
template <typename Function>
double bracketedRoot(const Function& function, double lower, double upper, double start)
{
    constexpr int kMaxSteps = 200; // Newton takes 5, bisection alone 64
    constexpr double kTolerance = 2.0 * std::numeric_limits<double>::epsilon();
    double x = start;
    for (int step = 0; step < kMaxSteps; ++step) {
        const ValueAndSlope at = function(x);
        if (at.value == 0.0) {
            break;
        }
        (at.value > 0.0 ? upper : lower) = x;
        double next = x - at.value / at.slope;
        if (!(lower < next && next < upper)) { // a NaN too
            next = std::midpoint(lower, upper);
        }
        const bool isDone = std::abs(next - x) <= kTolerance * std::abs(next);
        x = next;
        if (isDone) {
            break;
        }
    }
    return x;
}

} // namespace lumo::detail

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/optimisation/export.h"

#include <functional>

namespace lumo::optimization {

/// m functions of n parameters, and their derivatives. Must not throw.
struct LeastSquaresFunctions
{
    /// Fills f (m numbers) at x (n numbers).
    std::function<void(const double* x, double* f)> residuals;
    /// Fills the derivatives at x, column by column: that of function i by parameter j
    /// is at [i + j * m].
    std::function<void(const double* x, double* jac)> jacobian;
};

/// Why the solver ended. Its x is the best that it found in every case.
enum class SolverEnd {
    NotStarted,       ///< n < 1, m < n or a negative tolerance: x is untouched
    Converged,        ///< the sum of squares or x is known to the tolerance
    GradientVanished, ///< no direction changes the sum of squares to first order
    CallLimit,        ///< 100 (n + 1) evaluations were not enough
    RoundingLimit,    ///< the tolerance is finer than numbers can show
};

/// Minimises the sum of squares of m functions of n parameters with cminpack's
/// `lmder1` (J. J. Moré, "The Levenberg-Marquardt algorithm: implementation and
/// theory", 1978).
///
/// Work memory of (m + 6) n + 2 m numbers is taken, in one allocation for each
/// array. The functions are called on this thread only; calls of this function
/// may run in parallel.
///
/// \param[in,out] x  n numbers, the start and the result
/// \param tolerance  relative, of both the sum of squares and the parameters;
///        not negative
/// \param verbose  1: the sizes are logged
[[nodiscard]] LUMO_OPTIMISATION_EXPORT SolverEnd levenbergMarquardt(
    const LeastSquaresFunctions& functions, double* x, int n, int m, double tolerance, int verbose);

} // namespace lumo::optimization

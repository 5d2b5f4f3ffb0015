// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/optimisation/export.h"

namespace lumo::optimization {

/// What the solver calls, with `object` as it was given to it:
/// flag 1: fill `residuals` (m numbers) at `x` (n numbers);
/// flag 2: fill `jacobian`, column by column: the derivative of residual i by
/// parameter j is at [i + j * leadingDimension].
/// \returns 0; a negative number stops the solver. Must not throw.
using LevenbergMarquardtFunction = int (*)(
    void* object, int m, int n, const double* x, double* residuals, double* jacobian,
    int leadingDimension, int flag);

/// Minimises the sum of squares of m functions of n parameters with cminpack's
/// `lmder1` (J. J. Moré, "The Levenberg-Marquardt algorithm: implementation and
/// theory", 1978). How the solver ended is not told: x is the best that it
/// found, and what it was if there is nothing to solve (n < 1 or m < n).
///
/// Work memory of (m + 6) n + 2 m numbers is taken, in one allocation for each
/// array. The function is called on this thread only; calls of this function
/// may run in parallel.
///
/// \param[in,out] x  n numbers, the start and the result
/// \param tolerance  relative, of both the sum of squares and the parameters;
///        not negative
/// \param verbose  1: the sizes are logged
LUMO_OPTIMISATION_EXPORT void levenbergMarquardt(
    LevenbergMarquardtFunction function, void* object, double* x, int n, int m, double tolerance,
    int verbose);

} // namespace lumo::optimization

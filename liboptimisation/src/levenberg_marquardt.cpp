// SPDX-License-Identifier: Apache-2.0
#include "lumo/optimisation/levenberg_marquardt.h"

#include "lumo/foundation/log.h"

#include <cminpack.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumo::optimization {

namespace {

/// cminpack asks for the functions with flag 1 and for their derivatives with flag 2.
/// \returns 0: a negative number would end the solver
int evaluate(
    void* functions, int /*m*/, int /*n*/, const double* x, double* f, double* jac,
    int /*leadingDimension: m*/, int flag)
{
    const auto& both = *static_cast<const LeastSquaresFunctions*>(functions);
    if (flag == 1) {
        both.residuals(x, f);
    } else if (flag == 2) {
        both.jacobian(x, jac);
    }
    return 0;
}

/// \param info  what lmder1 returns
SolverEnd endOf(int info)
{
    switch (info) {
    case 1:
    case 2:
    case 3:
        return SolverEnd::Converged;
    case 4:
        return SolverEnd::GradientVanished;
    case 5:
        return SolverEnd::CallLimit;
    case 6:
    case 7:
        return SolverEnd::RoundingLimit;
    default:
        return SolverEnd::NotStarted;
    }
}

} // namespace

SolverEnd levenbergMarquardt(
    const LeastSquaresFunctions& functions, double* x, int n, int m, double tolerance, int verbose)
{
    const std::size_t rows = static_cast<std::size_t>(std::max(m, 0));
    const std::size_t columns = static_cast<std::size_t>(std::max(n, 0));
    const std::size_t workSize = 5 * columns + rows;
    std::vector<double> residuals(rows);
    std::vector<double> jacobian(columns * rows);
    std::vector<int> pivots(columns);
    std::vector<double> work(workSize);
    if (verbose == 1) {
        log::debug() << "LMOptimisation::LevenbergMarquardt start... n,m " << n << " " << m << " "
                     << workSize;
    }
    // C has no const for data of the caller's; evaluate() only reads it.
    void* const data = const_cast<LeastSquaresFunctions*>(&functions); // NOLINT
    return endOf(lmder1(
        evaluate, data, m, n, x, residuals.data(), jacobian.data(), m, tolerance, pivots.data(),
        work.data(), static_cast<int>(workSize)));
}

} // namespace lumo::optimization

// SPDX-License-Identifier: Apache-2.0
#include "lumo/optimisation/levenberg_marquardt.h"

#include "lumo/foundation/log.h"

#include <cminpack.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace lumo::optimization {

void levenbergMarquardt(
    LevenbergMarquardtFunction function, void* object, double* x, int n, int m, double tolerance,
    int verbose)
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
    // How it ended is of no use to the caller: x is the best found in any case.
    static_cast<void>(lmder1(
        function, object, m, n, x, residuals.data(), jacobian.data(), m, tolerance, pivots.data(),
        work.data(), static_cast<int>(workSize)));
}

} // namespace lumo::optimization

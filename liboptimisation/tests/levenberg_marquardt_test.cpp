// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/optimisation/levenberg_marquardt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace lumo::optimization {
namespace {

/// The valley of Rosenbrock, with a third function that is 0.
const LeastSquaresFunctions kValley{
    .residuals =
        [](const double* x, double* f) {
            const std::array values{10.0 * (x[1] - x[0] * x[0]), 1.0 - x[0], 0.0};
            std::copy(values.begin(), values.end(), f);
        },
    .jacobian =
        [](const double* x, double* jac) {
            const std::array columns{-20.0 * x[0], -1.0, 0.0, 10.0, 0.0, 0.0};
            std::copy(columns.begin(), columns.end(), jac);
        }};

TEST(LevenbergMarquardt, FindsTheMinimumWithTheGivenDerivatives)
{
    std::array x{-1.2, 1.0};
    const log::Capture logged;
    EXPECT_EQ(levenbergMarquardt(kValley, x.data(), 2, 3, 1e-14, 0), SolverEnd::GradientVanished);
    EXPECT_NEAR(x[0], 1.0, 1e-12);
    EXPECT_NEAR(x[1], 1.0, 1e-12);
    EXPECT_TRUE(logged.records().empty());
    static_cast<void>(levenbergMarquardt(kValley, x.data(), 2, 3, 1e-14, 1));
    EXPECT_TRUE(logged.contains(
        log::Level::Debug, "LMOptimisation::LevenbergMarquardt start... n,m 2 3 13"));
}

/// 1 + x + x^2 and 1 - x: their sum of squares is least at 0, where both are 1.
const LeastSquaresFunctions kNoRoot{
    .residuals =
        [](const double* x, double* f) {
            f[0] = 1.0 + x[0] + x[0] * x[0];
            f[1] = 1.0 - x[0];
        },
    .jacobian =
        [](const double* x, double* jac) {
            jac[0] = 1.0 + 2.0 * x[0];
            jac[1] = -1.0;
        }};

/// exp(-x), which becomes smaller with each step for ever.
const LeastSquaresFunctions kNoMinimum{
    .residuals = [](const double* x, double* f) { f[0] = std::exp(-x[0]); },
    .jacobian = [](const double* x, double* jac) { jac[0] = -std::exp(-x[0]); }};

TEST(LevenbergMarquardt, GivesTheReasonOfItsEnd)
{
    struct Case
    {
        LeastSquaresFunctions functions;
        double start;
        double tolerance;
        int n, m;
        SolverEnd expected;
    };
    const Case cases[] = {
        {kNoRoot, 0.5, 1e-6, 1, 2, SolverEnd::Converged},
        {kNoRoot, -0.5, 1e-6, 1, 2, SolverEnd::Converged},
        {kNoMinimum, 0.0, 1e-6, 1, 1, SolverEnd::CallLimit},
        {kNoRoot, 0.5, 0.0, 1, 2, SolverEnd::RoundingLimit},
        {kNoRoot, 0.5, -1.0, 1, 2, SolverEnd::NotStarted},
        {kNoRoot, 0.5, 1e-6, 1, 0, SolverEnd::NotStarted},
        {kNoRoot, 0.5, 1e-6, 1, -1, SolverEnd::NotStarted},
        {kNoRoot, 0.5, 1e-6, 0, 2, SolverEnd::NotStarted}};
    for (const Case& each : cases) {
        double x = each.start;
        EXPECT_EQ(
            levenbergMarquardt(each.functions, &x, each.n, each.m, each.tolerance, 0),
            each.expected)
            << static_cast<int>(each.expected) << " from " << each.start;
        if (each.expected == SolverEnd::NotStarted) {
            EXPECT_EQ(x, each.start);
        }
    }
}

} // namespace
} // namespace lumo::optimization

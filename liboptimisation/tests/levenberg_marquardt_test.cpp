// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/optimisation/levenberg_marquardt.h"

#include <gtest/gtest.h>

#include <array>

namespace lumo::optimization {
namespace {

/// The valley of Rosenbrock, with a third function that is 0.
int rosenbrock(
    void* calls, int m, int n, const double* x, double* residuals, double* jacobian,
    int leadingDimension, int flag)
{
    EXPECT_EQ(m, 3);
    EXPECT_EQ(n, 2);
    EXPECT_EQ(leadingDimension, 3);
    ++static_cast<std::array<int, 3>*>(calls)->at(static_cast<std::size_t>(flag));
    if (flag == 1) {
        const std::array values{10.0 * (x[1] - x[0] * x[0]), 1.0 - x[0], 0.0};
        std::copy(values.begin(), values.end(), residuals);
    } else {
        const std::array columns{-20.0 * x[0], -1.0, 0.0, 10.0, 0.0, 0.0};
        std::copy(columns.begin(), columns.end(), jacobian);
    }
    return 0;
}

TEST(LevenbergMarquardt, FindsTheMinimumWithTheGivenDerivatives)
{
    std::array<int, 3> calls{};
    std::array x{-1.2, 1.0};
    const log::Capture logged;
    levenbergMarquardt(rosenbrock, &calls, x.data(), 2, 3, 1e-14, 0);
    EXPECT_NEAR(x[0], 1.0, 1e-12);
    EXPECT_NEAR(x[1], 1.0, 1e-12);
    EXPECT_GT(calls[1], 0);
    EXPECT_GT(calls[2], 0);
    EXPECT_TRUE(logged.records().empty());
    levenbergMarquardt(rosenbrock, &calls, x.data(), 2, 3, 1e-14, 1);
    EXPECT_TRUE(logged.contains(
        log::Level::Debug, "LMOptimisation::LevenbergMarquardt start... n,m 2 3 13"));
}

TEST(LevenbergMarquardt, WithTooFewFunctionsNothingIsTouched)
{
    std::array<int, 3> calls{};
    std::array x{-1.2, 1.0};
    for (const int m : {1, 0, -1}) {
        levenbergMarquardt(rosenbrock, &calls, x.data(), 2, m, 1e-14, 0);
    }
    levenbergMarquardt(rosenbrock, &calls, x.data(), 0, 3, 1e-14, 0);
    EXPECT_EQ(x, (std::array{-1.2, 1.0}));
    EXPECT_EQ(calls, (std::array{0, 0, 0}));
}

} // namespace
} // namespace lumo::optimization

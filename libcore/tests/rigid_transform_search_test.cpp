// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"
#include "plain_rigid_estimate.h"
#include "rigid_scene.h"
#include "rigid_transform_access.h"
#include "test_seed.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lumo {
namespace {

using Access = OptimiseRigidTransform3DAccess;
using Points = std::vector<Eigen::Vector3d>;

math::RigidTransform3D fitToInliers(const RigidScene& scene)
{
    Points some[3];
    for (std::size_t i = 0; i < scene.points1.size(); ++i) {
        if (scene.inlier[i]) {
            some[0].push_back(scene.points1[i]);
            some[1].push_back(scene.points2[i]);
            some[2].push_back(scene.sigmas[i]);
        }
    }
    math::RigidTransform3D fit;
    EXPECT_TRUE(math::transformOptimisation::estimateTransform(some[0], some[1], some[2], fit));
    return fit;
}

/// The plain procedure with the functions of the library, all rows of them.
class PlainWithSolver : public PlainRigidEstimate
{
public:
    explicit PlainWithSolver(const RigidScene& scene)
        : PlainRigidEstimate(scene.points1, scene.points2, scene.sigmas)
        , m_functions(estimateOf(scene, nullptr))
    {}

    void compute()
    {
        PlainRigidEstimate::compute(
            {.residuals = [this](const double* x, double* f) { functions().g(x, f); },
             .jacobian = [this](const double* x, double* jac) { functions().dg(x, jac); }});
    }

private:
    const OptimiseRigidTransform3D& functions()
    {
        Access::setSolverState(m_functions, weights, noise);
        return m_functions;
    }

    OptimiseRigidTransform3D m_functions;
};

struct Search
{
    RigidScene::Kind kind;
    double ratio;
};

class RigidTransformSearch : public testing::TestWithParam<Search>
{};

// Without the lines of each sample, hopeless samples are given up early; with
// them nothing is. Both must end as the plain procedure does, bit for bit.
TEST_P(RigidTransformSearch, IsThePlainProcedureToTheLastBit)
{
    const auto& [kind, ratio] = GetParam();
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 5; ++trial) {
        SCOPED_TRACE(trial);
        const RigidScene scene(kind, rng);
        const std::mt19937 before = rng;
        PlainWithSolver plain(scene);
        plain.outlierRatio = ratio;
        plain.init(rng);
        const PlainWithSolver start = plain;
        plain.compute();
        for (const bool logSamples : {false, true}) {
            std::mt19937 own = before;
            OptimiseRigidTransform3D estimate = estimateOf(scene, &own);
            estimate.setOutlierRatio(ratio);
            estimate.setLogSamples(logSamples);
            const log::Capture logged;
            ASSERT_TRUE(estimate.init());
            ASSERT_EQ(own, rng);
            ASSERT_EQ(Access::transform(estimate), start.transform);
            ASSERT_EQ(weightsOf(estimate, kind.n), start.weights);
            if (logSamples) {
                EXPECT_EQ(countLines(logged, "computeOutliers median"), start.samples + 1);
            }
            estimate.compute();
            EXPECT_EQ(countLines(logged, "compute noise with tol"), plain.refinements);
            ASSERT_EQ(Access::transform(estimate), plain.transform);
            ASSERT_EQ(weightsOf(estimate, kind.n), plain.weights);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Scenes, RigidTransformSearch,
    testing::Values(
        Search{{.n = 5}, 0.3}, Search{{.n = 6, .outlierShare = 0.3}, 0.5},
        Search{{.n = 129, .outlierShare = 0.4}, 0.3}, Search{{.n = 100}, 0.0},
        Search{{.n = 300, .outlierShare = 0.5, .anisotropic = true}, 0.5},
        Search{{.n = 200, .outlierShare = 1.0}, 1.0},
        Search{{.n = 50, .scale = 1e6, .offset = 5e6}, 0.3}));

class RigidTransformRecovery : public testing::TestWithParam<RigidScene::Kind>
{};

TEST_P(RigidTransformRecovery, FindsTheTransformAndTheOutliers)
{
    const RigidScene::Kind& kind = GetParam();
    std::mt19937 rng(testSeed());
    const RigidScene scene(kind, rng);
    OptimiseRigidTransform3D estimate = estimateOf(scene, &rng);
    // A little more than there are: at exactly the share the quantile is an outlier's.
    estimate.setOutlierRatio(kind.outlierShare + 0.1);
    ASSERT_TRUE(estimate.init());
    estimate.compute();
    // A fit to m points is off by some sqrt(7 / m) sigmas, and by more where
    // the points lie badly, which the fit to the true inliers shows.
    // Of few points the noise model may take all but three for outliers.
    const double inliers = (1.0 - kind.outlierShare) * static_cast<double>(kind.n);
    const double rounding = 1e-14 * (kind.offset / kind.noise);
    const double bestPossible = largestError(scene, fitToInliers(scene));
    EXPECT_LT(
        largestError(scene, estimate.getTransform()),
        4.0 * bestPossible + (kind.n < 20 ? 40.0 : 6.0 * std::sqrt(7.0 / inliers)) +
            10.0 * rounding);
    if (kind.n < 30) {
        return;
    }
    double wrong = 0.0;
    for (std::size_t i = 0; i < kind.n; ++i) {
        const double weight = estimate.getWeight(static_cast<int>(i));
        EXPECT_TRUE(weight >= 0.0 && weight < 1.0) << weight;
        wrong += (weight > 0.5) != scene.inlier[i] ? 1.0 : 0.0;
    }
    EXPECT_LT(wrong, 2.0 + 0.02 * static_cast<double>(kind.n));
}

INSTANTIATE_TEST_SUITE_P(
    Scenes, RigidTransformRecovery,
    testing::Values(
        RigidScene::Kind{.n = 5}, RigidScene::Kind{.n = 10, .outlierShare = 0.1},
        RigidScene::Kind{.n = 100, .outlierShare = 0.3},
        RigidScene::Kind{.n = 100, .outlierShare = 0.5, .anisotropic = true},
        RigidScene::Kind{.n = 1000, .outlierShare = 0.5},
        RigidScene::Kind{.n = 10000, .outlierShare = 0.1},
        // Coordinates in a national grid, with millimetres of noise.
        RigidScene::Kind{
            .n = 200, .outlierShare = 0.3, .noise = 1e-3, .offset = 5e6, .extent = 500.0},
        RigidScene::Kind{.n = 200, .outlierShare = 0.3, .scale = 1e-6, .noise = 1e-9},
        RigidScene::Kind{.n = 200, .outlierShare = 0.3, .scale = 1e6, .noise = 1e3}));

} // namespace
} // namespace lumo

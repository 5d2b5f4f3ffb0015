// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"
#include "lumo/processing/processing_blob.h"
#include "rigid_scene.h"
#include "rigid_transform_access.h"
#include "test_seed.h"

#include <QStringList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace lumo {

namespace {

using Access = OptimiseRigidTransform3DAccess;
using Eigen::Vector3d;
using Points = std::vector<Vector3d>;
using testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(OptimiseRigidTransform3D, NoSampleIsDrawnForAStartThatIsGood)
{
    std::mt19937 rng(testSeed());
    const Points points = RigidScene({.n = 20}, rng).points2;
    const std::mt19937 before = rng;
    OptimiseRigidTransform3D estimate(points, points, &rng);
    EXPECT_TRUE(estimate.init());
    EXPECT_EQ(rng, before);
}

TEST(OptimiseRigidTransform3D, ASearchWithoutSuccessDraws201Samples)
{
    std::mt19937 rng(testSeed());
    const RigidScene scene({.n = 50, .outlierShare = 1.0}, rng);
    for (const int size : {2, 3, 50, 1000}) { // fits to two points all fail
        const log::Capture logged;
        OptimiseRigidTransform3D estimate = estimateOf(scene, &rng);
        estimate.setNrSample(size);
        EXPECT_TRUE(estimate.init());
        EXPECT_EQ(ProcessingBlob::instance().progress(), (Progress{100, "Transform init."}));
        EXPECT_EQ(logged.records().back().text.section("nrTrials ", 1), "201");
        EXPECT_EQ(
            countLines(logged, QString("nrTrialCorr %1").arg(std::min(size, 50)).toUtf8()), 1);
        EXPECT_EQ(countLines(logged, "computeOutliers median"), size == 2 ? 1 : 202);
    }
}

TEST(OptimiseRigidTransform3D, LinesOfAScoreAreThoseOfItsNumbers)
{
    const Points points2{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, -1, -1}};
    Points points1 = points2;
    points1[1] += Vector3d(0.3, 0, 0);
    points1[2] -= Vector3d(0.3, 0, 0);
    std::mt19937 rng(1);
    const log::Capture logged;
    ASSERT_TRUE(OptimiseRigidTransform3D(points1, points2, &rng).init());
    QStringList lines;
    for (const log::Record& record : logged.records()) {
        lines << record.text;
    }
    EXPECT_EQ(
        lines, (QStringList{
                   "opt rigid trans center1 0 0 0", "opt rigid trans center2 0 0 0",
                   "OptimiseRigidTransform3D::init() nrPoints 5 poi1/2 5 5 nrTrialCorr 3",
                   "computeOutliers median 0.3 pos 3 / 5", "nr Inliers 5 100 %", "median init 0.3",
                   "Transform init.", "med best 0.3 nrTrials 0"}));
}

TEST(OptimiseRigidTransform3D, OnePointIsMovedAndTwoAreTurned)
{
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 100; ++trial) {
        const RigidScene scene({.n = 2, .scale = 3.0, .noise = 1e-12}, rng);
        OptimiseRigidTransform3D estimate = estimateOf(scene, nullptr);
        ASSERT_TRUE(estimate.init());
        for (int pass = 0; pass < 2; ++pass) {
            const math::RigidTransform3D result = estimate.getTransform();
            for (std::size_t i = 0; i < 2; ++i) {
                ASSERT_LT((result.transform(scene.points2[i]) - scene.points1[i]).norm(), 1e-11);
            }
            estimate.compute();
        }
    }
    const Points a{{1, 2, 3}};
    const Points b{{4, 6, 8}};
    OptimiseRigidTransform3D one(a, b, nullptr);
    ASSERT_TRUE(one.init());
    one.compute();
    EXPECT_EQ(
        one.getTransform().parameters(),
        Eigen::VectorXd((Eigen::VectorXd(7) << 0, 0, 0, -3, -4, -5, 1).finished()));
    EXPECT_EQ(one.getWeight(0), 1.0);
    // Coincident points in one set tell neither a scale nor a direction.
    OptimiseRigidTransform3D coincident({{1, 0, 0}, {1, 0, 0}}, {{0, 0, 0}, {2, 0, 0}}, nullptr);
    ASSERT_TRUE(coincident.init());
    EXPECT_EQ(coincident.getTransform().scale(), 1.0);
    // Opposite directions have no axis: the rotation stays.
    OptimiseRigidTransform3D opposite({{1, 0, 0}, {3, 0, 0}}, {{2, 0, 0}, {1, 0, 0}}, nullptr);
    ASSERT_TRUE(opposite.init());
    EXPECT_EQ(opposite.getTransform().scale(), 2.0);
    EXPECT_EQ(opposite.getTransform().rotation(), RotationMatrix());
}

TEST(OptimiseRigidTransform3D, ThreeAndFourPointsAreFittedInClosedForm)
{
    std::mt19937 rng(testSeed());
    for (const std::size_t n : {3U, 4U}) {
        const RigidScene scene({.n = n, .noise = 1e-9}, rng);
        const std::mt19937 before = rng;
        const log::Capture logged;
        OptimiseRigidTransform3D estimate = estimateOf(scene, &rng);
        ASSERT_TRUE(estimate.init());
        EXPECT_EQ(rng, before);
        EXPECT_LT(largestError(scene, estimate.getTransform()), 1e4);
        estimate.compute();
        EXPECT_LT(largestError(scene, estimate.getTransform()), 1e4);
        EXPECT_EQ(countLines(logged, QString("error init%1 ").arg(n).toUtf8()), 1);
        EXPECT_EQ(countLines(logged, QString("med init%1 opt ").arg(n).toUtf8()), 1);
        EXPECT_GE(countLines(logged, "compute noise with tol"), 3);
        const Points line{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}};
        const Points points(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(n));
        OptimiseRigidTransform3D collinear(points, scene.points2, &rng);
        EXPECT_TRUE(collinear.init());
        EXPECT_EQ(Access::transform(collinear), math::RigidTransform3D());
    }
    const RigidScene three({.n = 3}, rng);
    OptimiseRigidTransform3D estimate = estimateOf(three, &rng);
    ASSERT_TRUE(estimate.init());
    const log::Capture logged;
    estimate.compute();
    EXPECT_TRUE(logged.contains(log::Level::Warning, "WARNING small weight 3 / nrPoints 3"));
    EXPECT_EQ(weightsOf(estimate, 3), std::vector<double>(3, 1.0));
}

TEST(OptimiseRigidTransform3D, WithoutPointsOrGeneratorThereIsNoStart)
{
    EXPECT_FALSE(OptimiseRigidTransform3D({}, {}, nullptr).init());
    for (const std::size_t n : {3U, 4U, 5U, 9U}) {
        const Points points(n, Vector3d::Zero());
        OptimiseRigidTransform3D estimate(points, points, nullptr);
        const log::Capture logged;
        EXPECT_FALSE(estimate.init());
        const log::Record record = logged.records().back();
        EXPECT_EQ(
            record.text, n < 5 ? "OptimiseRigidTransform3D::init() random rumbers not defined"
                               : "OptimiseRigidTransform3D::init() random number generator not "
                                 "defined");
        EXPECT_EQ(record.level, log::Level::Important);
        estimate.compute(); // from the identity
        EXPECT_EQ(Access::transform(estimate), math::RigidTransform3D());
    }
}

TEST(OptimiseRigidTransform3D, BadInputIsRefusedWithItsPlace)
{
    const Points points(6, Vector3d(1, 2, 3));
    std::mt19937 rng(1);
    const auto refusal = [&](int list, const Vector3d& bad) {
        Points lists[3]{points, points, points};
        lists[list][4] = bad;
        try {
            const OptimiseRigidTransform3D estimate(lists[0], lists[1], lists[2], &rng);
        } catch (const std::invalid_argument& failure) {
            return std::string(failure.what());
        }
        return std::string();
    };
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {kNaN, infinity, -infinity, 1e51}) {
        EXPECT_THAT(refusal(0, {0, bad, 0}), HasSubstr("points1[4]"));
        EXPECT_THAT(refusal(1, {bad, 0, 0}), HasSubstr("points2[4]"));
        EXPECT_THAT(refusal(2, {1, 1, bad}), HasSubstr("sigmas[4]"));
    }
    EXPECT_THAT(refusal(2, {1, 0, 1}), HasSubstr("sigmas[4]"));
    EXPECT_THAT(refusal(2, {1, -1, 1}), HasSubstr("sigmas[4]"));
    const Points fewer(5, Vector3d::Zero());
    EXPECT_THROW(OptimiseRigidTransform3D(points, points, fewer, &rng), std::runtime_error);
    const log::Capture logged;
    EXPECT_THROW(OptimiseRigidTransform3D(points, fewer, &rng), std::runtime_error);
    EXPECT_TRUE(logged.contains(
        log::Level::Important, "OptimiseRigidTransform3D length p1 / p2 is different"));
    OptimiseRigidTransform3D estimate(points, points, &rng);
    EXPECT_THROW(estimate.setOutlierRatio(-0.1), std::invalid_argument);
    EXPECT_THROW(estimate.setOutlierRatio(1.1), std::invalid_argument);
    EXPECT_THROW(estimate.setOutlierRatio(kNaN), std::invalid_argument);
    EXPECT_THROW(estimate.setNrSample(0), std::invalid_argument);
}

TEST(OptimiseRigidTransform3D, NoInputGivesATransformThatIsNotFinite)
{
    std::mt19937 rng(testSeed());
    const Points spread = RigidScene({.n = 8}, rng).points2;
    const Points sets[] = {spread, Points(8, Vector3d(5e6, 5e6, 5e6)), [&] {
                               Points line;
                               for (const Vector3d& point : spread) {
                                   line.emplace_back(point[0] * Vector3d(1, 2, 3));
                               }
                               return line;
                           }()};
    for (const Points& points1 : sets) {
        for (const Points& points2 : sets) {
            for (const double size1 : {1e50 / 5e6, 1e-50, 1.0}) {
                for (const double size2 : {1e50 / 5e6, 1e-50, 1.0}) {
                    for (const double sigma : {1e-50, 1e50}) {
                        Points a = points1;
                        Points b = points2;
                        for (std::size_t i = 0; i < 8; ++i) {
                            a[i] *= size1;
                            b[i] *= size2;
                        }
                        OptimiseRigidTransform3D estimate(
                            a, b, Points(8, Vector3d::Constant(sigma)), &rng);
                        ASSERT_TRUE(estimate.init());
                        estimate.compute();
                        ASSERT_TRUE(estimate.getTransform().isFinite())
                            << a[0] << " " << b[0] << " " << sigma;
                    }
                }
            }
        }
    }
}

TEST(OptimiseRigidTransform3D, AFunctionIsASquareTimesWeightAndInverseVariance)
{
    // Centred points 2 are turned by 90 degrees about z, doubled and moved by (1, 2, 3).
    const Points points2{{1, 0, 0}, {-1, 0, 0}};
    const Points points1{{10, 10, 10}, {20, 20, 20}}; // centred: (-5, -5, -5), (5, 5, 5)
    std::mt19937 rng(1);
    OptimiseRigidTransform3D estimate(points1, points2, {{1, 2, 4}, {1, 1, 1}}, &rng);
    GaussNoiseDiagonal<double, 3> noise;
    noise.clear();
    noise.add({1.0, 2.0, 0.5}, 1.0); // variances 1, 4, 0.25
    noise.finish();
    Access::setSolverState(estimate, {0.5, 1.0}, noise);
    const RotationMatrix turn = [] {
        RotationMatrix rotation;
        rotation.setAngleAxis(Vector3d::UnitZ(), 0.0, 1.0);
        return rotation;
    }();
    const Eigen::VectorXd x = math::RigidTransform3D(turn, {1, 2, 3}, 2.0).parameters();
    Eigen::VectorXd f(6);
    estimate.g(x.data(), f.data());
    // Moved points 2: (1, 4, 3) and (1, 0, 3).
    const Eigen::VectorXd expected = (Eigen::VectorXd(6) << 36.0 * 0.5, 81.0 / 4.0 * 0.5 / 4.0,
                                      64.0 / 16.0 * 0.5 * 4.0, 16.0, 25.0 / 4.0, 4.0 * 4.0)
                                         .finished();
    EXPECT_LT((f - expected).norm(), 1e-12) << f.transpose();
}

TEST(OptimiseRigidTransform3D, WeightsThatVanishAreAllReset)
{
    std::mt19937 rng(testSeed());
    const RigidScene scene({.n = 6}, rng);
    OptimiseRigidTransform3D estimate = estimateOf(scene, &rng);
    ASSERT_TRUE(estimate.init());
    Access::setSolverState(estimate, std::vector<double>(6, 1e-6), {});
    const log::Capture logged;
    Access::computeNoise(estimate);
    EXPECT_TRUE(logged.contains(log::Level::Warning, "WARNING small weight 6e-06 / nrPoints 6"));
    EXPECT_GT(weightsOf(estimate, 6).front(), 0.9);
}

TEST(OptimiseRigidTransform3D, NoResidualIsTooLargeForTheNoiseModel)
{
    // Far outliers, a scale of 1e100 and tiny sigmas.
    Points points1;
    Points points2;
    for (int i = 0; i < 20; ++i) {
        const double sign = i % 2 == 0 ? 1.0 : -1.0;
        const Vector3d point(std::cos(i / 2), std::sin(i / 2), 0.1 * (i / 2));
        points1.push_back(sign * point * 1e49);
        points2.push_back(sign * point * 1e-50);
    }
    for (const double sign : {1.0, -1.0}) {
        points1.push_back(Vector3d::Zero());
        points2.emplace_back(sign * 1e50, 0.0, 0.0);
    }
    std::mt19937 rng(testSeed());
    OptimiseRigidTransform3D estimate(
        points1, points2, Points(22, Vector3d::Constant(1e-50)), &rng);
    ASSERT_TRUE(estimate.init());
    estimate.compute();
    EXPECT_TRUE(estimate.getTransform().isFinite());
}

TEST(OptimiseRigidTransform3D, DerivativesAreThoseOfTheFunctions)
{
    std::mt19937 rng(testSeed());
    std::uniform_real_distribution<double> uniform(-3.0, 3.0);
    for (int trial = 0; trial < 100; ++trial) {
        const RigidScene scene({.n = 6, .noise = 0.5, .anisotropic = true}, rng);
        OptimiseRigidTransform3D estimate = estimateOf(scene, &rng);
        GaussNoiseDiagonal<double, 3> noise;
        noise.clear();
        noise.add({1.0, 2.0, 0.7}, 1.0);
        noise.finish();
        Access::setSolverState(estimate, {1.0, 0.5, 0.1, 0.9, 0.0, 1.0}, noise);
        Eigen::VectorXd x(7);
        for (double& value : x) {
            value = uniform(rng);
        }
        Eigen::MatrixXd jacobian(18, 7);
        estimate.dg(x.data(), jacobian.data());
        for (Eigen::Index j = 0; j < 7; ++j) {
            constexpr double kStep = 1e-5;
            const Eigen::VectorXd above = x + kStep * Eigen::VectorXd::Unit(7, j);
            const Eigen::VectorXd below = x - kStep * Eigen::VectorXd::Unit(7, j);
            Eigen::VectorXd fAbove(18);
            Eigen::VectorXd fBelow(18);
            estimate.g(above.data(), fAbove.data());
            estimate.g(below.data(), fBelow.data());
            const Eigen::VectorXd numeric = (fAbove - fBelow) / (2.0 * kStep);
            ASSERT_LT((numeric - jacobian.col(j)).norm(), 1e-6 * (1.0 + jacobian.col(j).norm()))
                << trial << " parameter " << j;
        }
    }
}

TEST(OptimiseRigidTransform3D, SplitScoresFindTheGapBetweenNoiseAndOutliers)
{
    std::mt19937 rng(testSeed());
    const RigidScene scene({.n = 400, .outlierShare = 0.3}, rng);
    OptimiseRigidTransform3D estimate = estimateOf(scene, &rng);
    estimate.setOutlierRatio(0.4);
    ASSERT_TRUE(estimate.init());
    estimate.compute();
    for (const auto& score : {Access::score, Access::scoreHist}) {
        double threshold = -1.0;
        EXPECT_LT(score(estimate, threshold), 1e256);
        // Noise of 0.01 on each axis ends near 0.04; outliers are spread over 30.
        EXPECT_GT(threshold, 0.025);
        EXPECT_LT(threshold, 2.0);
    }
    double untouched = -1.0;
    const OptimiseRigidTransform3D one(
        Points(1, Vector3d::Zero()), Points(1, Vector3d::Zero()), nullptr);
    EXPECT_EQ(Access::score(one, untouched), 1e256);
    EXPECT_EQ(Access::scoreHist(one, untouched), 1e256);
    EXPECT_EQ(untouched, -1.0);
}

TEST(OptimiseRigidTransform3D, PrintShowsTheResultAndEachPoint)
{
    const Points points{{1, 0, 0}, {0, 2, 0}, {0, 0, 3}};
    const OptimiseRigidTransform3D estimate(points, points, nullptr);
    const log::Capture logged;
    estimate.print(true);
    const std::vector<log::Record> records = logged.records();
    ASSERT_EQ(records.size(), 5u);
    EXPECT_EQ(records[0].text, "OptimiseRigidTransform3D singular values ");
    EXPECT_THAT(records[1].text.toStdString(), HasSubstr("scale: 1"));
    EXPECT_EQ(records[3].text, "rigid 0 2 0 weight 1");
}

} // namespace
} // namespace lumo

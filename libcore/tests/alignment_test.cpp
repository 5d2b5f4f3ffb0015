// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/alignment.h"
#include "lumo/core/init/alignment_report.h"
#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/processing/processing_blob.h"
#include "test_seed.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

namespace lumo {
namespace {

using Vector = Eigen::Vector3d;

struct Problem
{
    PointPairs pairs;
    math::RigidTransform3D truth;
};

/// Pairs of points in a box of `extents` under a transform, with noise of
/// `noise` in each set, the first `outliers` of them wrong.
Problem makeProblem(
    const Vector& extents, double noise, std::size_t count, std::size_t outliers,
    const math::RigidTransform3D& truth, std::mt19937& rng)
{
    std::uniform_real_distribution<double> inBox(-0.5, 0.5);
    std::normal_distribution<double> error(0.0, noise);
    const auto noisy = [&](const Vector& point) -> Vector {
        return point + Vector(error(rng), error(rng), error(rng));
    };
    Problem problem{{}, truth};
    for (std::size_t i = 0; i < count; ++i) {
        const Vector point = Vector(inBox(rng), inBox(rng), inBox(rng)).cwiseProduct(extents);
        const Vector wrong = Vector(inBox(rng), inBox(rng), inBox(rng)) * extents.maxCoeff();
        problem.pairs.points1.push_back(noisy(truth.transform(i < outliers ? wrong : point)));
        problem.pairs.points2.push_back(noisy(point * truth.scale()) / truth.scale());
    }
    return problem;
}

math::RigidTransform3D makeTransform(double scale, const Vector& translation)
{
    RotationMatrix rotation;
    rotation.set(0.3, -0.8, 2.1);
    return {rotation, translation, scale};
}

TEST(Alignment, AStopIsAFailureThatLeavesTheResultAlone)
{
    std::mt19937 rng(testSeed());
    const Problem problem =
        makeProblem({200, 300, 40}, 0.01, 100, 20, makeTransform(1.0, Vector::Zero()), rng);
    Alignment found;
    found.inliers = 7;
    QString error;
    serviceProgress().stop();
    EXPECT_FALSE(align(problem.pairs, {}, found, error));
    EXPECT_EQ(error, "stopped");
    EXPECT_EQ(found.inliers, 7u);
    serviceProgress().start();
    EXPECT_TRUE(align(problem.pairs, {}, found, error));
    EXPECT_EQ(found.inliers, 80u);
}

/// What a program sees that aligns on a worker thread and has made no services.
int exitCodeOfAlignmentWithoutServices()
{
    std::mt19937 rng(7);
    const Problem problem =
        makeProblem({200, 300, 40}, 0.01, 100, 20, makeTransform(1.0, Vector::Zero()), rng);
    bool aligned = false;
    bool stopped = false;
    std::thread([&] {
        Alignment found;
        QString error;
        aligned = align(problem.pairs, {}, found, error);
        ProcessingBlob::instance().stop();
        stopped = !align(problem.pairs, {}, found, error) && error == "stopped";
    }).join();
    const bool reported = ProcessingBlob::instance().progress().text == "Transform init.";
    return aligned && stopped && reported && CoreServices::existing() == nullptr ? 0 : 1;
}

TEST(AlignmentDeathTest, AThreadThatAlignsDoesNotStartTheServices)
{
    // In a fresh process: another test may have made the services of this one.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(exitCodeOfAlignmentWithoutServices()), testing::ExitedWithCode(0), "");
}

TEST(Alignment, TheUnitOfTheCoordinatesDoesNotMatter)
{
    std::mt19937 rng(testSeed());
    for (const double scale : {1e-6, 1.0, 1e6}) {
        SCOPED_TRACE(scale);
        const math::RigidTransform3D truth = makeTransform(scale, Vector(5e6, 4e5, 100) * scale);
        const double noise = 0.002 * scale; // of points 1, in whose unit it is
        const Problem problem = makeProblem({200, 300, 40}, noise, 200, 60, truth, rng);
        Alignment found;
        QString error;
        ASSERT_TRUE(align(problem.pairs, {}, found, error)) << qPrintable(error);
        EXPECT_EQ(found.degeneracy, Degeneracy::None);
        EXPECT_NEAR(found.transform.scale() / scale, 1.0, 1e-4);
        EXPECT_TRUE(found.transform.rotation().matrix().isApprox(truth.rotation().matrix(), 1e-4));
        for (std::size_t i = 0; i < found.weights.size(); ++i) {
            EXPECT_EQ(found.weights[i] >= 0.5, i >= 60) << i;
        }
        EXPECT_LT(found.rmsInliers, 5.0 * noise);
        EXPECT_GT(found.rmsInliers, noise);
        const Vector point(10, 20, 30);
        EXPECT_LT((found.transform.transform(point) - truth.transform(point)).norm(), 3.0 * noise);
    }
}

TEST(Alignment, SaysWhereTheGeometryLeavesTheTransformOpen)
{
    struct Case
    {
        const char* name;
        Vector extents;
        double noise;
        std::size_t count;
        std::size_t outliers;
        Degeneracy expected;
    };
    const Case cases[] = {
        {"volume", {100, 80, 30}, 0.01, 60, 0, Degeneracy::None},
        {"volume, outliers", {100, 80, 30}, 0.01, 60, 15, Degeneracy::None},
        {"plane", {100, 80, 0}, 0.01, 60, 0, Degeneracy::Coplanar},
        {"plane, exact", {100, 80, 0}, 0.0, 60, 0, Degeneracy::Coplanar},
        {"plane, outliers beside it", {100, 80, 0}, 0.01, 60, 15, Degeneracy::Coplanar},
        {"line", {100, 0, 0}, 0.01, 60, 0, Degeneracy::Collinear},
        {"line, exact", {100, 0, 0}, 0.0, 60, 0, Degeneracy::Collinear},
        {"line, outliers beside it", {100, 0, 0}, 0.01, 60, 15, Degeneracy::Collinear},
        {"a flight strip", {1000, 2, 1}, 0.02, 60, 0, Degeneracy::None},
        {"one point", {0, 0, 0}, 0.0, 20, 0, Degeneracy::Coincident},
        {"two pairs", {100, 80, 30}, 0.01, 2, 0, Degeneracy::TooFew},
        {"one pair", {100, 80, 30}, 0.01, 1, 0, Degeneracy::TooFew}};
    std::mt19937 rng(testSeed());
    for (const Case& each : cases) {
        for (const bool looksInMirror : {false, true}) {
            SCOPED_TRACE(std::string(each.name) + (looksInMirror ? ", mirrored" : ""));
            Problem problem = makeProblem(
                each.extents, each.noise, each.count, each.outliers,
                makeTransform(2.0, {1000, 2000, 50}), rng);
            for (Vector& point : problem.pairs.points2) {
                point.x() *= looksInMirror ? -1.0 : 1.0;
            }
            Alignment found;
            QString error;
            ASSERT_TRUE(align(problem.pairs, {}, found, error)) << qPrintable(error);
            const bool volume = each.expected == Degeneracy::None;
            EXPECT_EQ(
                text::toString(found.degeneracy),
                text::toString(looksInMirror && volume ? Degeneracy::Mirrored : each.expected));
        }
    }
}

TEST(Alignment, RefusesWhatItCannotAlign)
{
    Alignment found;
    QString error;
    EXPECT_FALSE(align({}, {}, found, error));
    EXPECT_EQ(error, "there are no point pairs");
    const Vector nan = Vector::Constant(std::numeric_limits<double>::quiet_NaN());
    const std::vector<Vector> good(6, Vector(1, 2, 3));
    const std::vector<Vector> bad(6, nan);
    const PointPairs cases[] = {
        {good, bad, {}, {}}, {bad, good, {}, {}}, {good, good, bad, {}}, {good, {nan}, {}, {}}};
    for (const PointPairs& pairs : cases) {
        error.clear();
        EXPECT_FALSE(align(pairs, {}, found, error));
        EXPECT_FALSE(error.isEmpty());
    }
    EXPECT_TRUE(found.weights.empty());
    AlignmentOptions wrong;
    wrong.outlierRatio = 1.0;
    EXPECT_THROW(static_cast<void>(align({}, wrong, found, error)), std::invalid_argument);
}

TEST(AlignmentReport, TextsOfTheInputCannotBreakThePage)
{
    std::mt19937 rng(testSeed());
    Problem problem = makeProblem({10, 10, 10}, 0.0, 8, 0, makeTransform(1.0, Vector::Zero()), rng);
    problem.pairs.names.assign(8, "</script><b>\"x\"");
    Alignment found;
    QString error;
    ASSERT_TRUE(align(problem.pairs, {}, found, error));
    const QByteArray page = alignmentReport("<img src=x>", problem.pairs, found);
    EXPECT_EQ(page.count("</script>"), 1);
    EXPECT_FALSE(page.contains("<img"));
    EXPECT_FALSE(page.contains("/*DATA*/"));
    EXPECT_FALSE(page.contains("src=\"") || page.contains("<link")); // nothing is loaded
    EXPECT_EQ(page.count("\\u003c/script>"), 8);
}

} // namespace
} // namespace lumo

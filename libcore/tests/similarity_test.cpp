// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/portable_math.h"
#include "lumo/core/init/point_pairs.h"
#include "lumo/core/init/similarity.h"
#include "rigid_scene.h"
#include "test_seed.h"

#include <Eigen/Geometry>
#include <Eigen/LU>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace lumo::similarity {
namespace {

using Eigen::Vector3d;

PointPairs pairsOf(const RigidScene& scene)
{
    return {scene.points1, scene.points2, {}, {}};
}

/// Largest distance of the places that a transform gives the points 2, in `sigma`.
double largestError(const RigidScene& scene, const math::RigidTransform3D& transform, double sigma)
{
    double largest = 0.0;
    for (const Vector3d& p : scene.points2) {
        largest =
            std::max(largest, (transform.transform(p) - scene.truth.transform(p)).norm() / sigma);
    }
    return largest;
}

TEST(PortableMath, IsThatOfTheCLibrary)
{
    for (double x = 1e-310; x < 1e300; x *= 1.37) {
        ASSERT_NEAR(portable::log(x), std::log(x), 4e-16 * std::abs(std::log(x))) << x;
    }
    for (double x = -690.0; x < 690.0; x += 0.37) {
        ASSERT_NEAR(portable::exp(x) / std::exp(x), 1.0, 1e-15) << x;
    }
    EXPECT_EQ(portable::exp(-1e300), 0.0);
}

TEST(Similarity, FewNoisyControlPointsAreAllRight)
{
    // Noise of 2 cm at a scale of 10.
    const PointPairs pairs{
        {{500000.002, 5200000.025, 404.981},
         {500120.020, 5200009.995, 402.995},
         {500110.038, 5200095.003, 411.999},
         {500005.015, 5200100.023, 407.999},
         {500060.012, 5200049.981, 401.993},
         {500029.991, 5200079.973, 405.970}},
        {{0, 0, 0.5}, {12, 1, 0.3}, {11, 9.5, 1.2}, {0.5, 10, 0.8}, {6, 5, 0.2}, {3, 8, 0.6}},
        {},
        {}};
    Estimate found;
    ASSERT_EQ(estimate(pairs, {}, found).failure, Failure::None);
    double squares = 0.0;
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_GT(found.weights[i], 0.5) << i;
        squares += examinePair(pairs, found, i).residual.squaredNorm() / 6.0;
    }
    EXPECT_NEAR(std::sqrt(squares), 0.03, 0.01);
    EXPECT_NEAR(found.transform.scale(), 10.0, 0.01);
}

struct Case
{
    RigidScene::Kind kind;
    bool giveSigmas = false;
};

class SimilarityScenes : public testing::TestWithParam<Case>
{};

TEST_P(SimilarityScenes, AreFoundWithoutBeingToldNoiseOrShare)
{
    const auto& [kind, giveSigmas] = GetParam();
    std::mt19937 rng(testSeed());
    for (int trial = 0; trial < 5; ++trial) {
        SCOPED_TRACE(trial);
        const RigidScene scene(kind, rng);
        PointPairs pairs = pairsOf(scene);
        constexpr double kWrongFactor = 1000.0; // millimetres in place of metres
        for (std::size_t i = 0; i < kind.n && giveSigmas; ++i) {
            pairs.sigmas.emplace_back(kWrongFactor * scene.sigmas[i]);
        }
        Estimate found;
        const Outcome outcome = estimate(pairs, {}, found);
        ASSERT_EQ(outcome.failure, Failure::None) << outcome.reason;
        const double right =
            static_cast<double>(std::count(scene.inlier.begin(), scene.inlier.end(), true));
        const double sigma = scene.sigmas.front().maxCoeff();
        EXPECT_LT(
            largestError(scene, found.transform, sigma),
            6.0 * std::sqrt(7.0 / right) * (kind.anisotropic ? 3.0 : 1.0) +
                1e-13 * kind.offset / sigma);
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < kind.n; ++i) {
            wrong += (found.weights[i] >= 0.5) != scene.inlier[i] ? 1U : 0U;
        }
        EXPECT_LE(wrong, 1 + kind.n / 100);
        if (giveSigmas) {
            EXPECT_NEAR(found.sigmaFactor * kWrongFactor, 1.0, 10.0 / std::sqrt(3.0 * right));
        }
        Estimate again;
        ASSERT_EQ(estimate(pairs, {}, again).failure, Failure::None);
        EXPECT_EQ(again.transform, found.transform);
        EXPECT_EQ(again.weights, found.weights);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Scenes, SimilarityScenes,
    testing::Values(
        Case{{.n = 20, .outlierShare = 0.7}}, Case{{.n = 48, .outlierShare = 0.5}}, Case{{.n = 49}},
        Case{{.n = 100, .outlierShare = 0.9}},
        Case{{.n = 2000, .outlierShare = 0.7, .scale = 1e-6, .noise = 1e-9}},
        Case{{.n = 700, .outlierShare = 0.3, .noise = 1e-3, .offset = 5e6, .extent = 500.0}},
        Case{{.n = 300, .outlierShare = 0.5, .anisotropic = true}, true},
        Case{{.n = 30, .outlierShare = 0.3, .anisotropic = true}, true}));

TEST(Similarity, NoiseThatDiffersByAxisIsFound)
{
    std::mt19937 rng(testSeed());
    RigidScene scene({.n = 2000, .outlierShare = 0.3, .noise = 0.01}, rng);
    for (std::size_t i = 0; i < 2000; ++i) {
        const double error = scene.points1[i].z() - scene.truth.transform(scene.points2[i]).z();
        scene.points1[i].z() += scene.inlier[i] ? 9.0 * error : 0.0;
    }
    Estimate found;
    ASSERT_EQ(estimate(pairsOf(scene), {}, found).failure, Failure::None);
    EXPECT_NEAR(found.axisFactors.prod(), 1.0, 1e-9);
    EXPECT_NEAR(found.axisFactors.z() / found.axisFactors.x(), 10.0, 1.0);
    EXPECT_NEAR(found.sigma * found.axisFactors.x(), 0.01, 0.001);
}

// The truth lies in the 95 % region about as often as that says.
TEST(Similarity, TheUncertaintyHoldsTheTruth)
{
    std::mt19937 rng(testSeed());
    for (const Freedom freedom :
         {Freedom::Similarity, Freedom::FixedScale, Freedom::Vertical, Freedom::Translation}) {
        for (const std::size_t n : {10U, 80U}) {
            SCOPED_TRACE(static_cast<int>(freedom) * 100 + static_cast<int>(n));
            constexpr int kTrials = 100;
            int inside = 0;
            for (int trial = 0; trial < kTrials; ++trial) {
                RigidScene scene({.n = n, .outlierShare = n > 10 ? 0.3 : 0.0, .scale = 2.0}, rng);
                // Turn set 2 so that no more than the free parameters is left.
                const RotationMatrix& r = scene.truth.rotation();
                RotationMatrix left;
                left.set(0.0, 0.0, 0.7);
                for (Vector3d& p : scene.points2) {
                    p = freedom == Freedom::Vertical      ? Vector3d(left * (r * p))
                        : freedom == Freedom::Translation ? Vector3d(r * p)
                                                          : p;
                }
                Estimate found;
                Options options;
                options.freedom = freedom;
                options.fixedScale = 2.0;
                ASSERT_EQ(estimate(pairsOf(scene), options, found).failure, Failure::None);
                const Vector3d place(7.0, -3.0, 4.0); // of set 2 as it is now
                Vector3d original =
                    freedom == Freedom::Vertical ? Vector3d(left.transpose() * place) : place;
                if (freedom == Freedom::Vertical || freedom == Freedom::Translation) {
                    original = r.transpose() * original;
                }
                const Vector3d error =
                    found.transform.transform(place) - scene.truth.transform(original);
                const double distance =
                    error.dot(found.uncertainty.predict(place).inverse() * error);
                const double factor = found.uncertainty.ellipsoidFactor(0.95);
                inside += distance <= factor * factor ? 1 : 0;
            }
            EXPECT_GE(inside, 86); // 95 of 100, less four standard deviations
        }
    }
}

TEST(Similarity, LeavingAPairOutIsWhatItsStatisticsSay)
{
    std::mt19937 rng(3); // of 1,000 scenes some have a pair that is called wrong
    RigidScene scene({.n = 8}, rng);
    const PointPairs pairs = pairsOf(scene);
    Estimate all;
    ASSERT_EQ(estimate(pairs, {}, all).failure, Failure::None);
    double redundancy = 0.0;
    for (std::size_t i = 0; i < 8; ++i) {
        const PairStatistics left = examinePair(pairs, all, i);
        redundancy += left.redundancy.sum();
        Options options;
        options.isCheck.assign(8, false);
        options.isCheck[i] = true;
        Estimate others;
        ASSERT_EQ(estimate(pairs, options, others).failure, Failure::None);
        EXPECT_EQ(others.weights[i], 0.0);
        const PairStatistics check = examinePair(pairs, others, i);
        EXPECT_LT((check.residual - left.leaveOneOut).norm(), 1e-4); // noise 0.01
        EXPECT_EQ(check.redundancy, Vector3d(Vector3d::Ones()));
        EXPECT_GT(left.smallestDetectable.minCoeff(), 4.13 * left.sigma.maxCoeff());
    }
    EXPECT_NEAR(redundancy, all.uncertainty.redundancy, 1e-6); // 3 n - 7
    // The covariance of the seven parameters, at the place of the origin.
    const Eigen::Matrix3d origin = all.uncertainty.predict(Vector3d::Zero());
    EXPECT_LT(
        (origin - all.uncertainty.covariance.block<3, 3>(3, 3)).norm(), 1e-12 * origin.norm());
}

TEST(Similarity, TheLargerOfTwoMotionsWinsAndTheOtherIsGiven)
{
    std::mt19937 rng(testSeed());
    for (const std::size_t n : {40U, 400U}) {
        for (const double share : {0.3, 0.5}) {
            SCOPED_TRACE(static_cast<double>(n) + share);
            RigidScene scene({.n = n}, rng);
            const auto moved = static_cast<std::size_t>(share * static_cast<double>(n));
            for (std::size_t i = 0; i < moved; ++i) {
                scene.points1[i] += Vector3d(8.0, -4.0, 2.0); // 900 times the noise
            }
            Estimate found;
            const Outcome outcome = estimate(pairsOf(scene), {}, found);
            if (share == 0.5) {
                EXPECT_EQ(outcome.failure, Failure::Undecided);
                ASSERT_EQ(outcome.candidates.size(), 2u);
                for (const Candidate& half : outcome.candidates) {
                    EXPECT_NEAR(
                        static_cast<double>(half.pairs.size()), static_cast<double>(moved),
                        0.05 * static_cast<double>(n));
                }
                continue;
            }
            ASSERT_EQ(outcome.failure, Failure::None) << outcome.reason;
            EXPECT_LT(largestError(scene, found.transform, 0.01), 4.0);
            ASSERT_TRUE(found.second.has_value());
            EXPECT_NEAR(
                static_cast<double>(found.second->pairs.size()), static_cast<double>(moved),
                0.05 * static_cast<double>(n));
        }
    }
}

TEST(Similarity, WhatCannotBeFoundIsRefusedWithItsReason)
{
    std::mt19937 rng(3); // some pairs of a few hundred such scenes fit by chance
    const auto mutate = [&](const RigidScene::Kind& kind, const auto& change) {
        PointPairs pairs = pairsOf(RigidScene(kind, rng));
        change(pairs);
        return pairs;
    };
    const auto nothing = [](PointPairs&) {};
    const auto shuffle = [&](PointPairs& pairs) {
        std::shuffle(pairs.points1.begin(), pairs.points1.end(), rng);
    };
    const auto mirror = [](PointPairs& pairs) {
        for (Vector3d& p : pairs.points2) {
            p.x() = -p.x();
        }
    };
    const auto oneFarOff = [](PointPairs& pairs) { pairs.points1[3].x() += 10.0; };
    const auto flatten = [](PointPairs& pairs) {
        for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
            pairs.points2[i].z() *= 0.05;
            pairs.points1[i] = pairs.points2[i] + 0.001 * pairs.points1[i].normalized();
            pairs.points2[i].z() *= -1.0;
        }
    };
    const auto line = [](PointPairs& pairs) {
        for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
            pairs.points1[i] = pairs.points2[i] = static_cast<double>(i) * Vector3d(1, 2, 3);
        }
    };
    const auto onePlace = [](PointPairs& pairs) {
        std::fill(pairs.points1.begin(), pairs.points1.end(), Vector3d(1, 2, 3));
    };
    const auto nan = [](PointPairs& pairs) {
        pairs.points2[1].y() = std::numeric_limits<double>::quiet_NaN();
    };
    const auto noSigma = [](PointPairs& pairs) {
        pairs.sigmas.assign(pairs.points1.size(), Vector3d(0.1, 0.0, 0.1));
    };
    struct Refused
    {
        const char* name;
        PointPairs pairs;
        Failure expected;
    };
    const Refused cases[] = {
        {"no pairs", {}, Failure::TooFewPairs},
        {"two pairs", mutate({.n = 2}, nothing), Failure::TooFewPairs},
        {"all wrong, few", mutate({.n = 12}, shuffle), Failure::NoCommonTransform},
        {"all wrong, many", mutate({.n = 100}, shuffle), Failure::NoCommonTransform},
        {"one of four wrong", mutate({.n = 4, .noise = 0.005, .extent = 100.0}, oneFarOff),
         Failure::Undecided},
        {"mirrored, few", mutate({.n = 20}, mirror), Failure::Mirrored},
        {"mirrored, many", mutate({.n = 200, .outlierShare = 0.3}, mirror), Failure::Mirrored},
        {"mirrored and flat", mutate({.n = 60}, flatten), Failure::Mirrored},
        {"line, few", mutate({.n = 9}, line), Failure::NoCommonTransform},
        {"line, many", mutate({.n = 90}, line), Failure::NoCommonTransform},
        {"one place", mutate({.n = 90}, onePlace), Failure::NoCommonTransform},
        {"not a number", mutate({.n = 9}, nan), Failure::BadInput},
        {"no deviation", mutate({.n = 9}, noSigma), Failure::BadInput}};
    for (const Refused& each : cases) {
        Estimate found;
        found.sigma = -7.0;
        const Outcome outcome = estimate(each.pairs, {}, found);
        EXPECT_EQ(static_cast<int>(outcome.failure), static_cast<int>(each.expected)) << each.name;
        EXPECT_FALSE(outcome.reason.empty()) << each.name;
        EXPECT_EQ(found.sigma, -7.0) << each.name;
    }
}

} // namespace
} // namespace lumo::similarity

// SPDX-License-Identifier: Apache-2.0
// The similarity estimate that is told nothing: accuracy and time beside a plain robust fit
// that is told the noise, power against one wrong pair, coverage of its uncertainty.
// Usage: similarity_benchmark accuracy|few|power|coverage|tails [scenes [largest n]]
#include "lumo/core/init/point_pairs.h"
#include "lumo/core/init/similarity.h"
#include "plain_ransac.h"
#include "rigid_scene.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace lumo {
namespace {

constexpr double kNoise = 0.01;
constexpr double kKnownThreshold = 3.4 * kNoise; // 99 % of the lengths of the noise
constexpr std::uint32_t kSeed = 20;

/// Of this process on a processor: what else the machine does, does not count.
double milliseconds()
{
    return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

Eigen::Matrix3Xd matrixOf(const std::vector<Eigen::Vector3d>& points)
{
    Eigen::Matrix3Xd matrix(3, static_cast<Eigen::Index>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
        matrix.col(static_cast<Eigen::Index>(i)) = points[i];
    }
    return matrix;
}

/// Root mean square, over the box of points 2, of what two transforms differ by.
double difference(
    const RigidScene& scene, const Eigen::Matrix3d& linear, const Eigen::Vector3d& translation)
{
    double sum = 0.0;
    for (int corner = 0; corner < 8; ++corner) {
        const Eigen::Vector3d p = 10.0 * Eigen::Vector3d(
                                             (corner & 1) != 0 ? 1 : -1, (corner & 2) != 0 ? 1 : -1,
                                             (corner & 4) != 0 ? 1 : -1);
        sum += (linear * p + translation - scene.truth.transform(p)).squaredNorm() / 8.0;
    }
    return std::sqrt(sum);
}

double difference(const RigidScene& scene, const math::RigidTransform3D& transform)
{
    return difference(
        scene, transform.scale() * transform.rotation().matrix(), transform.translation());
}

double difference(const RigidScene& scene, const Eigen::Matrix4d& matrix)
{
    return difference(scene, matrix.topLeftCorner<3, 3>(), matrix.topRightCorner<3, 1>());
}

/// The best fit to the true inliers.
double oracle(const RigidScene& scene)
{
    std::vector<Eigen::Vector3d> to;
    std::vector<Eigen::Vector3d> from;
    for (std::size_t i = 0; i < scene.inlier.size(); ++i) {
        if (scene.inlier[i]) {
            to.push_back(scene.points1[i]);
            from.push_back(scene.points2[i]);
        }
    }
    return difference(scene, Eigen::umeyama(matrixOf(from), matrixOf(to), true));
}

PointPairs pairsOf(const RigidScene& scene)
{
    return {scene.points1, scene.points2, {}, {}};
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// A transform is right if its error is below some of the best fit's, or of the noise.
bool isRight(double error, double best)
{
    return error < 5.0 * best + kNoise;
}

void accuracy(std::size_t scenes, std::size_t largest)
{
    std::printf(
        "%8s %6s  %8s %8s %8s  %8s %8s %8s %8s\n", "n", "wrong", "right", "error", "ms", "plain ok",
        "error", "ms", "time");
    for (std::size_t n : {20U, 40U, 100U, 1000U, 10000U, 100000U}) {
        for (const double share : {0.0, 0.3, 0.5, 0.7, 0.9}) {
            if (n > largest || (share > 0.8 && n < 100)) {
                continue;
            }
            std::mt19937 rng(kSeed);
            double squares = 0.0;
            double plainSquares = 0.0;
            double bestSquares = 0.0;
            std::size_t right = 0;
            std::size_t plainRight = 0;
            std::vector<double> ms;
            std::vector<double> plainMs;
            for (std::size_t i = 0; i < scenes; ++i) {
                const RigidScene scene({.n = n, .outlierShare = share, .noise = kNoise}, rng);
                const double best = oracle(scene);
                const PointPairs pairs = pairsOf(scene);
                similarity::Estimate found;
                double start = milliseconds();
                const auto outcome = similarity::estimate(pairs, {}, found);
                ms.push_back(milliseconds() - start);
                const double error = difference(scene, found.transform);
                const bool good =
                    outcome.failure == similarity::Failure::None && isRight(error, best);
                right += good ? 1U : 0U;
                bestSquares += best * best;
                squares += good ? error * error : best * best;
                const Eigen::Matrix3Xd to = matrixOf(scene.points1);
                const Eigen::Matrix3Xd from = matrixOf(scene.points2);
                std::mt19937 plainRng(kSeed);
                start = milliseconds();
                const Eigen::Matrix4d plain = PlainRansac(to, from, kKnownThreshold).run(plainRng);
                plainMs.push_back(milliseconds() - start);
                const double plainError = difference(scene, plain);
                plainRight += isRight(plainError, best) ? 1U : 0U;
                plainSquares += isRight(plainError, best) ? plainError * plainError : best * best;
            }
            std::printf(
                "%8zu %5.0f%%  %4zu/%3zu %8.4f %8.2f  %8zu %8.4f %8.2f %8.2f\n", n, 100.0 * share,
                right, scenes, std::sqrt(squares / bestSquares), median(ms), plainRight,
                std::sqrt(plainSquares / bestSquares), median(plainMs),
                median(ms) / median(plainMs));
            std::fflush(stdout);
        }
    }
}

/// Control points of a survey: 200 x 200 x 60 m, 5 cm of noise in set 1.
struct Survey
{
    Survey(std::size_t n, std::mt19937& rng)
    {
        std::uniform_real_distribution<double> uniform(-0.5, 0.5);
        std::normal_distribution<double> normal(0.0, kSurveyNoise);
        RotationMatrix rotation;
        rotation.set(uniform(rng), uniform(rng), 6.0 * uniform(rng));
        truth = {rotation, {5e5, 5.2e6, 400.0}, 10.0};
        for (std::size_t i = 0; i < n; ++i) {
            const Eigen::Vector3d place(
                200.0 * uniform(rng), 200.0 * uniform(rng), 60.0 * uniform(rng));
            pairs.points2.emplace_back(place / 10.0);
            const Eigen::Vector3d error(normal(rng), normal(rng), normal(rng));
            pairs.points1.emplace_back(truth.transform(pairs.points2.back()) + error);
        }
    }

    static constexpr double kSurveyNoise = 0.05;
    math::RigidTransform3D truth;
    PointPairs pairs;
};

/// How far a transform is from the truth at the control points, in standard deviations.
double errorOf(const Survey& survey, const math::RigidTransform3D& transform)
{
    double largest = 0.0;
    for (const Eigen::Vector3d& p : survey.pairs.points2) {
        largest = std::max(largest, (transform.transform(p) - survey.truth.transform(p)).norm());
    }
    return largest / Survey::kSurveyNoise;
}

void few(std::size_t scenes)
{
    std::printf("%4s %8s %8s %12s\n", "n", "refused", "> 5 sig", "good < 0.5 %");
    for (std::size_t n : {4U, 5U, 6U, 8U, 10U, 20U, 48U, 49U}) {
        std::mt19937 rng(kSeed);
        std::size_t refused = 0;
        std::size_t far = 0;
        std::size_t low = 0;
        for (std::size_t i = 0; i < scenes; ++i) {
            const Survey survey(n, rng);
            similarity::Estimate found;
            if (similarity::estimate(survey.pairs, {}, found).failure !=
                similarity::Failure::None) {
                ++refused;
                continue;
            }
            far += errorOf(survey, found.transform) > 5.0 ? 1U : 0U;
            for (const double weight : found.weights) {
                low += weight < 0.5 ? 1U : 0U;
            }
        }
        std::printf(
            "%4zu %8zu %8zu %12.3f\n", n, refused, far,
            100.0 * static_cast<double>(low) / static_cast<double>(n * scenes));
    }
}

void power(std::size_t scenes)
{
    std::printf("%4s %6s %9s %8s %8s\n", "n", "sigmas", "accepted", "refused", "> 5 sig");
    for (std::size_t n : {4U, 5U, 6U, 8U, 10U}) {
        for (const double off : {10.0, 20.0, 50.0, 200.0}) {
            std::mt19937 rng(kSeed);
            std::size_t accepted = 0;
            std::size_t refused = 0;
            std::size_t far = 0;
            for (std::size_t i = 0; i < scenes; ++i) {
                Survey survey(n, rng);
                std::normal_distribution<double> normal;
                const Eigen::Vector3d direction(normal(rng), normal(rng), normal(rng));
                survey.pairs.points1[0] += off * Survey::kSurveyNoise * direction.normalized();
                similarity::Estimate found;
                if (similarity::estimate(survey.pairs, {}, found).failure !=
                    similarity::Failure::None) {
                    ++refused;
                    continue;
                }
                accepted += found.weights[0] >= 0.5 ? 1U : 0U;
                far += errorOf(survey, found.transform) > 10.0 ? 1U : 0U;
            }
            const auto percent = [&](std::size_t count) {
                return 100.0 * static_cast<double>(count) / static_cast<double>(scenes);
            };
            std::printf(
                "%4zu %6.0f %8.2f%% %7.2f%% %7.2f%%\n", n, off, percent(accepted), percent(refused),
                percent(far));
        }
    }
}

/// Whether the 95 % region of the seven parameters holds the truth.
bool holds(const similarity::Estimate& found, const math::RigidTransform3D& truth)
{
    const Eigen::Matrix3d turn =
        truth.rotation().matrix() * found.transform.rotation().matrix().transpose();
    const Eigen::AngleAxisd angle(turn);
    Eigen::Matrix<double, 7, 1> error;
    error << angle.angle() * angle.axis(),
        truth.transform(found.uncertainty.centre2) -
            found.transform.transform(found.uncertainty.centre2),
        std::log(truth.scale() / found.transform.scale());
    const double distance = error.dot(found.uncertainty.local.ldlt().solve(error));
    const double factor = found.uncertainty.regionFactor(7, 0.95);
    return distance <= factor * factor;
}

enum class Law { Gauss, Laplace, Student3, Cauchy };

double draw(Law law, std::mt19937& rng)
{
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> uniform(-0.5, 0.5);
    switch (law) {
    case Law::Laplace: {
        const double u = uniform(rng);
        return (u < 0.0 ? -1.0 : 1.0) * std::log(std::max(1.0 - 2.0 * std::abs(u), 1e-300));
    }
    case Law::Student3:
        return std::student_t_distribution<double>(3.0)(rng);
    case Law::Cauchy:
        return std::cauchy_distribution<double>()(rng);
    case Law::Gauss:
        break;
    }
    return normal(rng);
}

RigidScene sceneOf(std::size_t n, double share, Law law, std::mt19937& rng)
{
    RigidScene scene({.n = n, .outlierShare = share, .noise = kNoise}, rng);
    for (std::size_t i = 0; i < n && law != Law::Gauss; ++i) {
        if (scene.inlier[i]) {
            const Eigen::Vector3d error(draw(law, rng), draw(law, rng), draw(law, rng));
            scene.points1[i] = scene.truth.transform(scene.points2[i]) + kNoise * error;
        }
    }
    return scene;
}

void coverage(std::size_t scenes, std::size_t largest)
{
    const char* const names[] = {"Gauss", "Laplace", "t3"};
    std::printf("%8s %6s %8s %8s %8s\n", "n", "wrong", "noise", "holds %", "refused");
    for (std::size_t n : {6U, 10U, 20U, 48U, 60U, 100U, 1000U}) {
        for (const double share : {0.0, 0.3, 0.7}) {
            for (const Law law : {Law::Gauss, Law::Laplace, Law::Student3}) {
                if (n > largest || (n < 20 && share > 0.0)) {
                    continue;
                }
                std::mt19937 rng(kSeed);
                std::size_t inside = 0;
                std::size_t refused = 0;
                for (std::size_t i = 0; i < scenes; ++i) {
                    const RigidScene scene = sceneOf(n, share, law, rng);
                    similarity::Estimate found;
                    if (similarity::estimate(pairsOf(scene), {}, found).failure !=
                        similarity::Failure::None) {
                        ++refused;
                    } else {
                        inside += holds(found, scene.truth) ? 1U : 0U;
                    }
                }
                std::printf(
                    "%8zu %5.0f%% %8s %8.1f %8zu\n", n, 100.0 * share,
                    names[static_cast<std::size_t>(law)],
                    100.0 * static_cast<double>(inside) / static_cast<double>(scenes - refused),
                    refused);
                std::fflush(stdout);
            }
        }
    }
}

} // namespace
} // namespace lumo

int main(int argc, char** argv)
{
    const std::string what = argc > 1 ? argv[1] : "accuracy";
    const std::size_t scenes = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 30;
    const std::size_t largest = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 100000;
    if (what == "few") {
        lumo::few(scenes);
    } else if (what == "power") {
        lumo::power(scenes);
    } else if (what == "coverage") {
        lumo::coverage(scenes, largest);
    } else {
        lumo::accuracy(scenes, largest);
    }
}

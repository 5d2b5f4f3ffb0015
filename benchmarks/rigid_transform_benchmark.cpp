// SPDX-License-Identifier: Apache-2.0
// Accuracy and time of the robust rigid transform beside what one would use
// instead. Usage: rigid_transform_benchmark [largest number of points]
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "plain_ransac.h"
#include "rigid_scene.h"

#ifdef LUMO_BENCHMARK_OPENCV
#include <opencv2/calib3d.hpp>
#endif

#include <Eigen/Geometry>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace lumo {
namespace {

constexpr double kNoise = 0.01;
constexpr double kKnownThreshold = 3.4 * kNoise; // 99 % of the lengths of the noise
constexpr std::uint32_t kSeed = 20;

struct Estimate
{
    Eigen::Matrix3d linear; ///< scale times rotation
    Eigen::Vector3d translation;
    std::vector<bool> inlier;
    double startMs = 0.0; ///< of the time, what the search for a start took
};

/// A scene in the form that Eigen likes.
struct Columns
{
    explicit Columns(const RigidScene& scene, bool inliersOnly)
    {
        const auto n = static_cast<Eigen::Index>(scene.points1.size());
        to.resize(3, n);
        from.resize(3, n);
        Eigen::Index kept = 0;
        for (std::size_t i = 0; i < scene.points1.size(); ++i) {
            if (!inliersOnly || scene.inlier[i]) {
                to.col(kept) = scene.points1[i];
                from.col(kept++) = scene.points2[i];
            }
        }
        to.conservativeResize(3, kept);
        from.conservativeResize(3, kept);
    }

    Eigen::Matrix3Xd to, from;
};

Estimate estimateOf(const Eigen::Matrix4d& matrix, std::size_t n)
{
    return {
        matrix.topLeftCorner<3, 3>(), matrix.topRightCorner<3, 1>(), std::vector<bool>(n, true)};
}

double millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

Estimate byThisLibrary(const RigidScene& scene, double outlierShare, bool logSamples)
{
    const auto start = std::chrono::steady_clock::now();
    std::mt19937 rng(kSeed);
    OptimiseRigidTransform3D estimate(scene.points1, scene.points2, scene.sigmas, &rng);
    // A little more than there are: at exactly the share the quantile is an outlier's.
    estimate.setOutlierRatio(outlierShare + 0.05);
    estimate.setLogSamples(logSamples);
    if (!estimate.init()) {
        std::abort();
    }
    const double startMs = millisecondsSince(start);
    estimate.compute();
    const math::RigidTransform3D result = estimate.getTransform();
    Estimate converted{
        result.scale() * result.rotation().matrix(), result.translation(), {}, startMs};
    for (std::size_t i = 0; i < scene.points1.size(); ++i) {
        converted.inlier.push_back(estimate.getWeight(static_cast<int>(i)) > 0.5);
    }
    return converted;
}

Estimate byClosedForm(const RigidScene& scene, bool inliersOnly)
{
    const Columns columns(scene, inliersOnly);
    return estimateOf(Eigen::umeyama(columns.from, columns.to, true), scene.points1.size());
}

Estimate byPlainRansac(const RigidScene& scene)
{
    const Columns columns(scene, false);
    PlainRansac ransac(columns.to, columns.from, kKnownThreshold);
    std::mt19937 rng(kSeed);
    const Eigen::Matrix4d matrix = ransac.run(rng);
    Estimate estimate = estimateOf(matrix, scene.points1.size());
    estimate.inlier.assign(scene.points1.size(), false);
    for (const Eigen::Index i : ransac.inliers(matrix)) {
        estimate.inlier[static_cast<std::size_t>(i)] = true;
    }
    return estimate;
}

#ifdef LUMO_BENCHMARK_OPENCV
Estimate byOpenCv(const RigidScene& scene)
{
    std::vector<cv::Point3d> from;
    std::vector<cv::Point3d> to;
    for (std::size_t i = 0; i < scene.points1.size(); ++i) {
        const Eigen::Vector3d& p = scene.points2[i];
        const Eigen::Vector3d& q = scene.points1[i];
        from.emplace_back(p[0], p[1], p[2]);
        to.emplace_back(q[0], q[1], q[2]);
    }
    cv::Mat matrix;
    cv::Mat inliers;
    cv::estimateAffine3D(from, to, matrix, inliers, kKnownThreshold, 0.999);
    Estimate estimate = estimateOf(Eigen::Matrix4d::Identity(), from.size());
    for (int row = 0; row < 3 && !matrix.empty(); ++row) {
        for (int column = 0; column < 3; ++column) {
            estimate.linear(row, column) = matrix.at<double>(row, column);
        }
        estimate.translation[row] = matrix.at<double>(row, 3);
    }
    for (int i = 0; i < inliers.rows; ++i) {
        estimate.inlier[static_cast<std::size_t>(i)] = inliers.at<unsigned char>(i) != 0;
    }
    return estimate;
}
#endif

/// Sums over scenes of what is reported of one method.
struct Report
{
    double rotation = 0.0; ///< squared radians
    double translation = 0.0;
    double scale = 0.0;
    double found = 0.0, right = 0.0, inliers = 0.0;
    double ms = 0.0, startMs = 0.0;
    int scenes = 0;

    void add(const RigidScene& scene, const Estimate& estimate)
    {
        const double factor = std::cbrt(std::abs(estimate.linear.determinant()));
        const Eigen::Matrix3d turn =
            estimate.linear / factor * scene.truth.rotation().matrix().transpose();
        // Half the antisymmetric part: the small rotation vector.
        const Eigen::Vector3d axis(
            turn(2, 1) - turn(1, 2), turn(0, 2) - turn(2, 0), turn(1, 0) - turn(0, 1));
        rotation += (0.5 * axis).squaredNorm();
        translation += (estimate.translation - scene.truth.translation()).squaredNorm();
        scale += std::pow(factor / scene.truth.scale() - 1.0, 2);
        for (std::size_t i = 0; i < scene.inlier.size(); ++i) {
            found += estimate.inlier[i] ? 1.0 : 0.0;
            inliers += scene.inlier[i] ? 1.0 : 0.0;
            right += estimate.inlier[i] && scene.inlier[i] ? 1.0 : 0.0;
        }
        startMs += estimate.startMs;
        ++scenes;
    }

    void print(const char* method) const
    {
        const auto rms = [this](double sum) { return std::sqrt(sum / scenes); };
        std::printf(
            "  %-28s %9.2e %9.2e %9.2e  %6.4f %6.4f %10.2f", method, rms(rotation),
            rms(translation), rms(scale), right / found, right / inliers, ms / scenes);
        std::printf(startMs > 0.0 ? "  (start %.2f)\n" : "\n", startMs / scenes);
    }
};

void compare(std::size_t n, double share)
{
    struct Method
    {
        const char* name;
        std::function<Estimate(const RigidScene&)> run;
        std::size_t mostScenes; ///< fewer where the time alone is of interest
    };
    // Errors of fewer scenes would say little: the mean of 24 is right to some 10 %.
    const std::size_t scenes = n < 100000 ? 40 : 24;
    const std::vector<Method> methods{
        {"fit to the true inliers", [](const RigidScene& s) { return byClosedForm(s, true); },
         scenes},
        {"this library", [share](const RigidScene& s) { return byThisLibrary(s, share, false); },
         scenes},
        {"this library, samples logged",
         [share](const RigidScene& s) { return byThisLibrary(s, share, true); }, 4},
        {"plain robust, threshold known", byPlainRansac, scenes},
        {"closed form, all points", [](const RigidScene& s) { return byClosedForm(s, false); },
         scenes},
#ifdef LUMO_BENCHMARK_OPENCV
        {"OpenCV affine, threshold known", byOpenCv, scenes},
#endif
    };
    std::vector<Report> reports(methods.size());
    std::mt19937 rng(kSeed);
    for (std::size_t repeat = 0; repeat < scenes; ++repeat) {
        const RigidScene scene({.n = n, .outlierShare = share, .noise = kNoise}, rng);
        for (std::size_t i = 0; i < methods.size(); ++i) {
            if (repeat >= methods[i].mostScenes) {
                continue;
            }
            const auto start = std::chrono::steady_clock::now();
            const Estimate estimate = methods[i].run(scene);
            reports[i].ms += millisecondsSince(start);
            reports[i].add(scene, estimate);
        }
    }
    std::printf(
        "n %zu, outliers %.0f %%, %zu scenes\n  %-28s %9s %9s %9s  %6s %6s %10s\n", n,
        100.0 * share, scenes, "", "rot rad", "transl", "scale", "prec", "recall", "ms");
    for (std::size_t i = 0; i < methods.size(); ++i) {
        reports[i].print(methods[i].name);
    }
}

} // namespace
} // namespace lumo

int main(int argc, char** argv)
{
    const std::size_t largest = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : std::size_t{100000};
    for (std::size_t n = 100; n <= largest; n *= 10) {
        for (const double share : {0.0, 0.1, 0.3, 0.5}) {
            lumo::compare(n, share);
        }
    }
}

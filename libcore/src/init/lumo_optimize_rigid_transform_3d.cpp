// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"

#include "init/rigid_residuals.h"
#include "lumo/foundation/log.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace lumo {

namespace {

using Points = std::vector<Eigen::Vector3d>;

// Squares of coordinates, and of their ratios to sigmas, stay in the range of numbers.
constexpr double kLargestNumber = 1e50;
constexpr double kMinimumNoise = 1e-6;
constexpr double kMaximumNoise = 1e256;

[[noreturn]] void refuse(const char* list, std::size_t i, const char* reason)
{
    throw std::invalid_argument(
        std::string("OptimiseRigidTransform3D: ") + list + "[" + std::to_string(i) + "] " + reason);
}

void checkCoordinates(const char* list, const Points& points)
{
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!(points[i].array().abs() <= kLargestNumber).all()) { // NaN too
            refuse(list, i, "is not a point with finite coordinates of at most 1e50");
        }
    }
}

void checkSigmas(const Points& sigmas)
{
    for (std::size_t i = 0; i < sigmas.size(); ++i) {
        const auto sigma = sigmas[i].array();
        if (!(sigma >= 1.0 / kLargestNumber && sigma <= kLargestNumber).all()) {
            refuse("sigmas", i, "is not a positive standard deviation from 1e-50 to 1e50");
        }
    }
}

Eigen::Vector3d meanOf(const Points& points)
{
    Eigen::Vector3d sum = Eigen::Vector3d::Zero();
    for (const Eigen::Vector3d& point : points) {
        sum += point;
    }
    return points.empty() ? sum : Eigen::Vector3d(sum / static_cast<double>(points.size()));
}

Points relativeTo(const Eigen::Vector3d& centre, const Points& points)
{
    Points result;
    result.reserve(points.size());
    for (const Eigen::Vector3d& point : points) {
        result.emplace_back(point - centre);
    }
    return result;
}

} // namespace

OptimiseRigidTransform3D::OptimiseRigidTransform3D(
    const Points& points1, const Points& points2, const Points& sigmas, std::mt19937* rng)
    : m_points1(points1)
    , m_points2(points2)
    , m_weights(points1.size(), 1.0)
    , m_rng(rng)
{
    if (points1.size() != points2.size()) {
        const char* const text = "OptimiseRigidTransform3D length p1 / p2 is different";
        log::important() << text;
        throw std::runtime_error(text);
    }
    if (sigmas.size() != points1.size()) {
        throw std::runtime_error("OptimiseRigidTransform3D length p1 / sigmas is different");
    }
    checkCoordinates("points1", points1);
    checkCoordinates("points2", points2);
    checkSigmas(sigmas);
    m_centre1 = meanOf(points1);
    m_centre2 = meanOf(points2);
    log::debug() << "opt rigid trans center1 " << m_centre1[0] << m_centre1[1] << m_centre1[2];
    log::debug() << "opt rigid trans center2 " << m_centre2[0] << m_centre2[1] << m_centre2[2];
    m_columns = rigidResiduals::columnsOf(
        relativeTo(m_centre1, points1), relativeTo(m_centre2, points2), sigmas);
    m_noise.setDeterminantBounds(kMinimumNoise, kMaximumNoise);
}

OptimiseRigidTransform3D::OptimiseRigidTransform3D(
    const Points& points1, const Points& points2, std::mt19937* rng)
    : OptimiseRigidTransform3D(
          points1, points2, Points(points1.size(), Eigen::Vector3d::Ones()), rng)
{}

void OptimiseRigidTransform3D::setOutlierRatio(double ratio)
{
    if (!(ratio >= 0.0 && ratio <= 1.0)) {
        throw std::invalid_argument("OptimiseRigidTransform3D: the outlier ratio is not in [0, 1]");
    }
    m_outlierRatio = ratio;
}

void OptimiseRigidTransform3D::setNrSample(int count)
{
    if (count < 1) {
        throw std::invalid_argument("OptimiseRigidTransform3D: a sample without points");
    }
    m_nrTrialCorr = static_cast<std::uint32_t>(count);
}

void OptimiseRigidTransform3D::setRandomGenerator(std::mt19937* rng)
{
    m_rng = rng;
}

void OptimiseRigidTransform3D::setStopRequest(std::function<bool()> shouldStop)
{
    m_shouldStop = std::move(shouldStop);
}

void OptimiseRigidTransform3D::setLogSamples(bool log)
{
    m_logSamples = log;
}

math::RigidTransform3D OptimiseRigidTransform3D::getTransform() const
{
    const Eigen::Vector3d turned = m_transform.scale() * (m_transform.rotation() * m_centre2);
    return {
        m_transform.rotation(), m_transform.translation() + m_centre1 - turned,
        m_transform.scale()};
}

void OptimiseRigidTransform3D::print(bool perPoint) const
{
    log::info() << "OptimiseRigidTransform3D singular values ";
    const math::RigidTransform3D transform = getTransform();
    transform.print();
    if (!perPoint) {
        return;
    }
    for (std::size_t i = 0; i < m_points2.size(); ++i) {
        const Eigen::Vector3d point = transform.transform(m_points2[i]);
        log::info() << "rigid " << point[0] << point[1] << point[2] << " weight " << m_weights[i];
    }
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/optimise_rigid_transform_scale_orient.h"

#include "lumo/foundation/log.h"
#include "lumo/optimisation/levenberg_marquardt.h"

#include <Eigen/Geometry>

#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>

namespace lumo {

namespace {

constexpr double kMinimumVariance = 1e-6;
constexpr double kMaximumVariance = 0.001;
constexpr double kShortestAxis = 1e-12; // the sine of the angle between two directions
constexpr double kTolerance = 1e-14;
constexpr int kParameters = 3;
constexpr int kRefinements = 5;

void checkNumbers(
    const std::vector<double>& scales1, const std::vector<double>& scales2,
    const std::vector<Eigen::Vector3d>& directions1,
    const std::vector<Eigen::Vector3d>& directions2)
{
    const auto refuse = [](const char* list, std::size_t i) {
        throw std::invalid_argument(
            std::string("OptimiseRigidTransformScaleOrient: ") + list + "[" + std::to_string(i) +
            "] is not finite");
    };
    for (std::size_t i = 0; i < scales1.size(); ++i) {
        if (!std::isfinite(scales1[i]) || !std::isfinite(scales2[i])) {
            refuse("scales", i);
        }
    }
    for (std::size_t i = 0; i < directions1.size(); ++i) {
        if (!directions1[i].allFinite() || !directions2[i].allFinite()) {
            refuse("directions", i);
        }
    }
}

RotationMatrix rotationOf(const double* x)
{
    RotationMatrix rotation;
    rotation.set(x[0], x[1], x[2]);
    return rotation;
}

/// sqrt(2 pi variance) * outlier density: that density relative to the peak of the noise.
double relativeDensity(double variance, double outlierDensity)
{
    return std::sqrt(2.0 * std::numbers::pi * variance) * outlierDensity;
}

/// By omega, phi and kappa, of R * v, of which `rotated` is the value.
std::array<Eigen::Vector3d, 3> derivatives(
    const RotationMatrix& rotation, const Eigen::Vector3d& v, const Eigen::Vector3d& rotated)
{
    // R = Rz^T Ry^T Rx^T: each angle turns the vector backwards, kappa about the
    // last z axis, phi about the y axis before kappa, omega about the first x axis.
    const double sKappa = std::sin(rotation.kappa());
    const double cKappa = std::cos(rotation.kappa());
    const Eigen::Vector3d phiAxis(sKappa, cKappa, 0.0);
    return {
        rotation * Eigen::Vector3d(v.cross(Eigen::Vector3d::UnitX())), rotated.cross(phiAxis),
        rotated.cross(Eigen::Vector3d::UnitZ())};
}

} // namespace

OptimiseRigidTransformScaleOrient::OptimiseRigidTransformScaleOrient()
    : OptimiseRigidTransformScaleOrient({}, {}, {}, {})
{}

OptimiseRigidTransformScaleOrient::OptimiseRigidTransformScaleOrient(
    const std::vector<double>& scales1, const std::vector<double>& scales2,
    const Directions& directions1, const Directions& directions2)
    : m_scales1(scales1)
    , m_scales2(scales2)
    , m_directions1(directions1)
    , m_directions2(directions2)
    , m_scaleWeights(scales1.size(), 1.0)
    , m_orientationWeights(directions1.size(), 1.0)
{
    if (!lengthsAgree()) {
        const char* const text = "OptimiseRigidTransformScaleOrient length p1 / p2 is different";
        log::important() << text;
        throw std::runtime_error(text);
    }
    checkNumbers(scales1, scales2, directions1, directions2);
    m_orientationNoise.setBounds(kMinimumVariance, kMaximumVariance);
}

OptimiseRigidTransformScaleOrient::OptimiseRigidTransformScaleOrient(
    const OptimiseRigidTransformScaleOrient&) = default;
OptimiseRigidTransformScaleOrient& OptimiseRigidTransformScaleOrient::operator=(
    const OptimiseRigidTransformScaleOrient&) = default;
OptimiseRigidTransformScaleOrient::~OptimiseRigidTransformScaleOrient() = default;

bool OptimiseRigidTransformScaleOrient::lengthsAgree() const
{
    return m_scales1.size() == m_scales2.size() && m_directions1.size() == m_directions2.size();
}

Eigen::Vector3d OptimiseRigidTransformScaleOrient::residual(std::size_t i) const
{
    return m_transform.rotation() * m_directions2[i] - m_directions1[i];
}

void OptimiseRigidTransformScaleOrient::computeNoiseWeights()
{
    m_orientationNoise.clear();
    for (std::size_t i = 0; i < m_directions1.size(); ++i) {
        for (const double component : residual(i)) {
            m_orientationNoise.add(component, m_orientationWeights[i]);
        }
    }
    m_orientationNoise.finish();
    m_orientationNoise.print();
    for (std::size_t i = 0; i < m_directions1.size(); ++i) {
        double p = 1.0;
        for (const double component : residual(i)) {
            p *= m_orientationNoise.density(component);
        }
        m_orientationWeights[i] = p / (p + m_outlierDensity);
    }
}

bool OptimiseRigidTransformScaleOrient::init()
{
    log::info() << "OptimiseRigidTransformScaleOrient";
    if (!lengthsAgree()) {
        log::important() << "OptimiseRigidTransformScaleOrient::init() poi1/2";
        return false;
    }
    m_transform = {};
    computeNoiseWeights();
    if (!m_scales1.empty()) {
        double sum = 0.0;
        for (std::size_t i = 0; i < m_scales1.size(); ++i) {
            sum += m_scales1[i] / m_scales2[i];
        }
        if (std::isnan(sum)) {
            log::important()
                << "OptimiseRigidTransformScaleOrient::init() the mean ratio of the scales "
                   "is not a number";
            return false;
        }
        m_transform.setScale(sum / static_cast<double>(m_scales1.size()));
    }
    for (int axis = 0; axis < 3; ++axis) {
        startAlongAxis(axis);
    }
    computeNoiseWeights();
    return true;
}

void OptimiseRigidTransformScaleOrient::startAlongAxis(int axis)
{
    Eigen::Vector3d sum = Eigen::Vector3d::Zero();
    int count = 0;
    for (std::size_t i = 0; i < m_directions1.size(); ++i) {
        const Eigen::Vector3d turned = m_transform.rotation() * m_directions2[i];
        const Eigen::Vector3d normal = turned.cross(m_directions1[i]);
        const double length = normal.norm();
        if (!(length > kShortestAxis) || m_directions1[i][axis] != 1.0) {
            continue;
        }
        // The length is the sine of the angle, times lengths that need not be 1.
        // About this normal the turn to the first direction is always positive.
        const double angle = std::atan2(length, turned.dot(m_directions1[i]));
        RotationMatrix rotation;
        rotation.setAngleAxis(normal / length, std::cos(angle), std::sin(angle));
        sum += rotation.angles();
        ++count;
        log::debug() << "Ori " << i << rotation.omega() << rotation.phi() << rotation.kappa();
    }
    if (count != 0) {
        const Eigen::Vector3d mean = sum / count;
        m_transform.setRotation(rotationOf(mean.data()) * m_transform.rotation());
    }
}

void OptimiseRigidTransformScaleOrient::g(const double* x, double* f)
{
    const RotationMatrix rotation = rotationOf(x);
    const double variance = m_orientationNoise.variance();
    const double c = relativeDensity(variance, m_outlierDensity);
    double sum = 0.0;
    for (std::size_t i = 0; i < m_directions1.size(); ++i) {
        const Eigen::Vector3d e = rotation * m_directions2[i] - m_directions1[i];
        for (Eigen::Index k = 0; k < 3; ++k) {
            const double value = -2.0 * std::log(std::exp(-e[k] * e[k] / (2.0 * variance)) + c);
            f[3 * i + static_cast<std::size_t>(k)] = value;
            sum += value;
        }
    }
    log::debug() << "OptimiseRigidTransformScaleOrient error: " << sum << " cov " << variance;
}

void OptimiseRigidTransformScaleOrient::dg(const double* x, double* jac)
{
    const RotationMatrix rotation = rotationOf(x);
    const double variance = m_orientationNoise.variance();
    const double c = relativeDensity(variance, m_outlierDensity);
    const std::size_t rows = 3 * m_directions1.size();
    for (std::size_t i = 0; i < m_directions1.size(); ++i) {
        const Eigen::Vector3d rotated = rotation * m_directions2[i];
        const Eigen::Vector3d e = rotated - m_directions1[i];
        const auto byAngle = derivatives(rotation, m_directions2[i], rotated);
        for (Eigen::Index k = 0; k < 3; ++k) {
            const double p = std::exp(-e[k] * e[k] / (2.0 * variance));
            const double byResidual = 2.0 * p / (p + c) * e[k] / variance;
            for (std::size_t angle = 0; angle < 3; ++angle) {
                jac[3 * i + static_cast<std::size_t>(k) + angle * rows] =
                    byResidual * byAngle[angle][k];
            }
        }
    }
}

void OptimiseRigidTransformScaleOrient::LevenbergMarquardt(
    void* object, double* x, int n, int m, double tolerance, int verbose)
{
    auto& self = *static_cast<OptimiseRigidTransformScaleOrient*>(object);
    // How it ended does not matter: x is the best found in any case.
    static_cast<void>(optimization::levenbergMarquardt(
        {.residuals = [&](const double* at, double* f) { self.g(at, f); },
         .jacobian = [&](const double* at, double* jac) { self.dg(at, jac); }},
        x, n, m, tolerance, verbose));
}

void OptimiseRigidTransformScaleOrient::compute()
{
    Eigen::Vector3d x = m_transform.rotation().angles();
    const int rows = static_cast<int>(3 * m_directions1.size());
    for (int i = 0; i < kRefinements; ++i) {
        LevenbergMarquardt(this, x.data(), kParameters, rows, kTolerance, 0);
        m_transform.setRotation(rotationOf(x.data()));
        computeNoiseWeights();
    }
}

void OptimiseRigidTransformScaleOrient::print(bool perPair)
{
    m_transform.print();
    if (!perPair) {
        return;
    }
    for (std::size_t i = 0; i < m_directions2.size(); ++i) {
        const Eigen::Vector3d turned = m_transform.rotation() * m_directions2[i];
        log::info() << "rigid scale" << turned[0] << turned[1] << turned[2] << " weight "
                    << m_orientationWeights[i];
    }
}

} // namespace lumo

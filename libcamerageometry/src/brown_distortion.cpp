// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/brown_distortion.h"

#include "bracketed_root.h"
#include "polynomial.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace lumo {

namespace {

constexpr double kLargestRadius = 1000.0;

/// With u = (T2, T1), p = (x, y), g the radial factor, the distorted point is
/// p g(r) + r^2 u + 2 (u.p) p: the gradient of a potential. Its Jacobian is
/// symmetric, the sum of a radial part with eigenvalues g and d(r g)/dr and a
/// tangential one of norm up to 6 |u| r. Where it is positive definite all over
/// a disc, the potential is strictly convex and the map one-to-one.
double oneToOneRadius(const std::array<double, 3>& k, double axisLength)
{
    const double t = -6.0 * axisLength;
    const double across[] = {1.0, t, k[0], 0.0, k[1], 0.0, k[2]};
    const double along[] = {1.0, t, 3.0 * k[0], 0.0, 5.0 * k[1], 0.0, 7.0 * k[2]};
    return std::min(
        endOfPositiveRange(across, 0.0, kLargestRadius),
        endOfPositiveRange(along, 0.0, kLargestRadius));
}

double radialFactor(const std::array<double, 3>& k, double r2)
{
    return 1.0 + r2 * (k[0] + r2 * (k[1] + r2 * k[2]));
}

/// d(r radialFactor)/dr.
double radialSlope(const std::array<double, 3>& k, double r2)
{
    return 1.0 + r2 * (3.0 * k[0] + r2 * (5.0 * k[1] + r2 * 7.0 * k[2]));
}

} // namespace

BrownDistortion::BrownDistortion(
    const std::array<double, 3>& radial, const std::array<double, 2>& tangential)
    : m_radial(radial)
    , m_tangential(tangential)
{
    const auto isFinite = [](double value) { return std::isfinite(value); };
    const auto isZero = [](double value) { return value == 0.0; };
    if (!std::ranges::all_of(radial, isFinite) || !std::ranges::all_of(tangential, isFinite)) {
        throw std::invalid_argument("lens distortion: a coefficient is not finite");
    }
    if (!std::ranges::all_of(radial, isZero) || !std::ranges::all_of(tangential, isZero)) {
        m_limit = oneToOneRadius(radial, tangentialAxis().norm());
    }
}

std::optional<Eigen::Vector2d> BrownDistortion::distort(const Eigen::Vector2d& ideal) const
{
    if (!(ideal.norm() < m_limit)) {
        return std::nullopt;
    }
    const double r2 = ideal.squaredNorm();
    const Eigen::Vector2d u = tangentialAxis();
    return ideal * (radialFactor(m_radial, r2) + 2.0 * u.dot(ideal)) + r2 * u;
}

/// From the distorted point q = p (g + 2 u.p) + r^2 u follows that p lies along
/// w = q - r^2 u (the bracket is positive inside the disc), which leaves one
/// equation for r alone: r g + 2 r^2 u.w/|w| - |w| = 0. Where the map is
/// one-to-one it has one root and rises there.
std::optional<Eigen::Vector2d> BrownDistortion::undistort(const Eigen::Vector2d& distorted) const
{
    const double distance = distorted.norm();
    if (!std::isfinite(distance)) {
        return std::nullopt;
    }
    if (std::isinf(m_limit) || distance == 0.0) {
        return distorted;
    }
    const Eigen::Vector2d u = tangentialAxis();
    const auto equation = [&](double r) -> detail::ValueAndSlope {
        const double r2 = r * r;
        const Eigen::Vector2d w = distorted - r2 * u;
        const double length = w.norm();
        if (length == 0.0) { // between the cosines -1 and 1; the value is positive at both
            return {r * radialFactor(m_radial, r2), 0.0};
        }
        const double cosine = u.dot(w) / length; // times |u|
        const double turning = (u.squaredNorm() - cosine * cosine) / length;
        return {
            r * radialFactor(m_radial, r2) + 2.0 * r2 * cosine - length,
            radialSlope(m_radial, r2) + 6.0 * r * cosine - 4.0 * r2 * r * turning};
    };
    if (!(equation(m_limit).value > 0.0)) {
        return std::nullopt;
    }
    const double r = detail::bracketedRoot(equation, 0.0, m_limit, std::min(distance, m_limit));
    return r * (distorted - r * r * u).normalized();
}

Eigen::Vector2d BrownDistortion::tangentialAxis() const
{
    return {m_tangential[1], m_tangential[0]};
}

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#include "lumo/camerageometry/fisheye_camera.h"

#include "bracketed_root.h"
#include "polynomial.h"

#include <Eigen/LU>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace lumo {

namespace {

constexpr double kRadiansPerTheta = std::numbers::pi / 2.0;
constexpr double kBackward = 2.0; // the largest theta there is

// Relative to the squared size of the entries.
constexpr double kSingularDeterminant = 1e-12;

Eigen::Matrix2d matrixOf(const FisheyeCamera::Affine& affine)
{
    Eigen::Matrix2d matrix;
    matrix << affine.c, affine.d, affine.e, affine.f;
    return matrix;
}

void checkPolynomial(const std::vector<double>& polynomial)
{
    if (polynomial.size() < 2) {
        throw std::invalid_argument("fisheye camera: the polynomial has fewer than 2 coefficients");
    }
    if (!std::ranges::all_of(polynomial, [](double p) { return std::isfinite(p); })) {
        throw std::invalid_argument("fisheye camera: a coefficient is not finite");
    }
    if (polynomial[1] <= 0.0) {
        throw std::invalid_argument("fisheye camera: the polynomial does not grow at the axis");
    }
}

void checkAffine(const FisheyeCamera::Affine& affine)
{
    const Eigen::Matrix2d matrix = matrixOf(affine);
    // Written so that a NaN or an overflow is refused too.
    if (!(matrix.allFinite() &&
          std::abs(matrix.determinant()) > kSingularDeterminant * matrix.squaredNorm())) {
        throw std::invalid_argument("fisheye camera: the affine map is singular or not finite");
    }
}

} // namespace

FisheyeCamera::FisheyeCamera(
    std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
    std::vector<double> polynomial, const Affine& affine)
    : AbstractCamera(imageWidth, imageHeight, principalPoint)
    , m_polynomial(std::move(polynomial))
    , m_affine(affine)
    , m_maximumTheta(endOfPositiveRange(polynomialDerivative(m_polynomial), 0.0, kBackward))
{
    checkPolynomial(m_polynomial);
    checkAffine(affine);
    if (!(polynomialValue(m_polynomial, m_maximumTheta) > 0.0)) {
        throw std::invalid_argument("fisheye camera: the polynomial is not positive anywhere");
    }
}

double FisheyeCamera::focalLength() const
{
    return m_polynomial[1] / kRadiansPerTheta *
           std::sqrt(std::abs(matrixOf(m_affine).determinant()));
}

std::optional<Eigen::Vector2d> FisheyeCamera::project(const Eigen::Vector3d& point) const
{
    if (!point.allFinite() || point.isZero(0.0)) {
        return std::nullopt;
    }
    const double sideways = std::hypot(point.x(), point.y());
    if (sideways == 0.0) {
        const bool hasImage = point.z() > 0.0 && m_polynomial[0] == 0.0;
        return hasImage ? std::optional(principalPoint()) : std::nullopt;
    }
    const double theta = std::atan2(sideways, point.z()) / kRadiansPerTheta;
    const double rho = polynomialValue(m_polynomial, theta);
    if (!(theta < m_maximumTheta && rho > 0.0)) {
        return std::nullopt;
    }
    const Eigen::Vector2d centred = rho * (point.head<2>() / sideways);
    return matrixOf(m_affine) * centred + principalPoint();
}

std::optional<Eigen::Vector3d> FisheyeCamera::backProject(const Eigen::Vector2d& pixel) const
{
    const Eigen::Vector2d centred = matrixOf(m_affine).inverse() * (pixel - principalPoint());
    const double rho = centred.norm();
    if (rho == 0.0 && m_polynomial[0] == 0.0) {
        return Eigen::Vector3d::UnitZ();
    }
    // Rho grows with theta, so that the field's ends bound it (and not a NaN).
    const bool isReached =
        rho > std::max(m_polynomial[0], 0.0) && rho < polynomialValue(m_polynomial, m_maximumTheta);
    if (!isReached) {
        return std::nullopt;
    }
    const double angle = thetaAt(rho) * kRadiansPerTheta;
    const Eigen::Vector2d sideways = std::sin(angle) * (centred / rho);
    return Eigen::Vector3d(sideways.x(), sideways.y(), std::cos(angle));
}

double FisheyeCamera::thetaAt(double rho) const
{
    const auto equation = [&](double theta) -> detail::ValueAndSlope {
        double value = 0.0;
        double slope = 0.0;
        for (std::size_t i = m_polynomial.size(); i > 0; --i) {
            slope = slope * theta + value;
            value = value * theta + m_polynomial[i - 1];
        }
        return {value - rho, slope};
    };
    const double start = (rho - m_polynomial[0]) / m_polynomial[1];
    return detail::bracketedRoot(equation, 0.0, m_maximumTheta, std::min(start, m_maximumTheta));
}

} // namespace lumo

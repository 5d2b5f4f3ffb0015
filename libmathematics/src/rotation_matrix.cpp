// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/rotation_matrix.h"

#include <Eigen/LU>

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace lumo {

namespace {

// Accepts matrices that were stored with 7 significant digits.
constexpr double kInputTolerance = 1e-6;

// Far enough above the rounding of a product of rotations (1e-16) that a right
// angle is always seen, and small enough that nothing is lost by dropping kappa.
constexpr double kGimbalLockCosine = 1e-14;

Eigen::Matrix3d matrixOf(const Eigen::Vector3d& angles)
{
    const double cOmega = std::cos(angles[0]);
    const double cPhi = std::cos(angles[1]);
    const double cKappa = std::cos(angles[2]);
    const double sOmega = std::sin(angles[0]);
    const double sPhi = std::sin(angles[1]);
    const double sKappa = std::sin(angles[2]);
    Eigen::Matrix3d matrix;
    matrix << cPhi * cKappa, sOmega * sPhi * cKappa + cOmega * sKappa,
        sOmega * sKappa - cOmega * sPhi * cKappa, //
        -cPhi * sKappa, cOmega * cKappa - sOmega * sPhi * sKappa,
        sOmega * cKappa + cOmega * sPhi * sKappa, //
        sPhi, -sOmega * cPhi, cOmega * cPhi;
    return matrix;
}

Eigen::Vector3d anglesOf(const Eigen::Matrix3d& r)
{
    const double cosPhi = std::hypot(r(2, 1), r(2, 2));
    const double phi = std::atan2(r(2, 0), cosPhi);
    if (cosPhi < kGimbalLockCosine) {
        return {std::atan2(r(1, 2), r(1, 1)), phi, 0.0};
    }
    // Kappa is taken relative to omega and not from the first column: close to
    // gimbal lock both are uncertain, but together they still give the matrix.
    const double omega = std::atan2(-r(2, 1), r(2, 2));
    const double sOmega = std::sin(omega);
    const double cOmega = std::cos(omega);
    const double kappa =
        std::atan2(cOmega * r(0, 1) + sOmega * r(0, 2), cOmega * r(1, 1) + sOmega * r(1, 2));
    return {omega, phi, kappa};
}

bool isRotation(const Eigen::Matrix3d& m)
{
    const Eigen::Matrix3d defect = m.transpose() * m - Eigen::Matrix3d::Identity();
    return (defect.array().abs() <= kInputTolerance).all() && m.determinant() > 0.0;
}

} // namespace

void RotationMatrix::set(double omega, double phi, double kappa)
{
    m_angles = {omega, phi, kappa};
    m_matrix = matrixOf(m_angles);
}

void RotationMatrix::set(const Eigen::Matrix3d& rotation)
{
    if (!isRotation(rotation)) {
        throw std::invalid_argument("RotationMatrix::set: the matrix is not a rotation");
    }
    setUnchecked(rotation);
}

void RotationMatrix::setAngleAxis(const Eigen::Vector3d& axis, double cosAngle, double sinAngle)
{
    // Written so that a NaN is refused too.
    if (!(std::abs(axis.squaredNorm() - 1.0) <= 2.0 * kInputTolerance)) {
        throw std::invalid_argument("RotationMatrix::setAngleAxis: the axis is not of unit length");
    }
    if (!(std::abs(cosAngle * cosAngle + sinAngle * sinAngle - 1.0) <= kInputTolerance)) {
        throw std::invalid_argument(
            "RotationMatrix::setAngleAxis: the numbers are not cosine and sine of an angle");
    }
    Eigen::Matrix3d cross;
    cross << 0.0, -axis.z(), axis.y(), axis.z(), 0.0, -axis.x(), -axis.y(), axis.x(), 0.0;
    setUnchecked(
        cosAngle * Eigen::Matrix3d::Identity() + sinAngle * cross +
        (1.0 - cosAngle) * axis * axis.transpose());
}

void RotationMatrix::setOmegaPhiKappaRelative(double omega, double phi, double kappa)
{
    setUnchecked(matrixOf({omega, phi, kappa}).transpose());
}

Eigen::Vector3d RotationMatrix::eulerAnglesAsDegree() const
{
    return m_angles * (180.0 / std::numbers::pi);
}

RotationMatrix RotationMatrix::transpose() const
{
    RotationMatrix result;
    result.setUnchecked(m_matrix.transpose());
    return result;
}

RotationMatrix RotationMatrix::operator*(const RotationMatrix& other) const
{
    RotationMatrix result;
    result.setUnchecked(m_matrix * other.m_matrix);
    return result;
}

void RotationMatrix::setUnchecked(const Eigen::Matrix3d& rotation)
{
    // The matrix is computed again, so that errors do not add up over a chain of products and
    // the same angles always mean the same matrix.
    m_angles = anglesOf(rotation);
    m_matrix = matrixOf(m_angles);
}

} // namespace lumo

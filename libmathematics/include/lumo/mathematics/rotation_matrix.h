// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"

#include <Eigen/Core>

namespace lumo {

/// A rotation in space, stored as three angles and the 3x3 matrix computed from exactly
/// these angles. With c and s for cosine and sine of omega, phi and kappa:
///
///     |  cphi ckappa   somega sphi ckappa + comega skappa   somega skappa - comega sphi ckappa |
/// R = | -cphi skappa   comega ckappa - somega sphi skappa   somega ckappa + comega sphi skappa |
///     |  sphi         -somega cphi                          comega cphi                        |
///
/// R = Rz(kappa)^T Ry(phi)^T Rx(omega)^T, where Ra(t) turns a vector
/// right-handed about axis a by t: R(omega, phi, kappa) takes coordinates in a
/// fixed frame to coordinates in a frame that was turned by omega about its x
/// axis, then phi about its new y axis, then kappa about its new z axis.
///
/// Functions that do not set the angles themselves compute them: phi in [-pi/2, pi/2],
/// omega and kappa in [-pi, pi]. At gimbal lock (cos phi below 1e-14) the rotation
/// determines only omega + kappa (phi > 0) or omega - kappa (phi < 0); then kappa is set
/// to 0, which changes no entry of the matrix by more than 1e-13.
///
/// A value; starts as the identity; const calls may run in parallel. Angles
/// are in radians unless a name contains another unit. Angles that are not finite give a
/// matrix of NaN, so that a solver notices that its step has failed.
class LUMO_MATHEMATICS_EXPORT RotationMatrix
{
public:
    RotationMatrix() = default;

    /// Sets the angles as given, without wrapping them into a range, and computes the
    /// matrix R of the class description.
    void set(double omega, double phi, double kappa);

    /// Sets the rotation from a matrix.
    /// \throws std::invalid_argument if `rotation` is not a rotation: an entry
    ///         of R^T R - I above 1e-6, a negative determinant or a NaN. The
    ///         value is untouched then. Smaller errors are removed.
    void set(const Eigen::Matrix3d& rotation);

    /// Sets the rotation that turns vectors right-handed about an axis
    /// (O. Rodrigues 1840): v -> cos v + sin (a x v) + (1 - cos)(a . v) a.
    /// \param axis  unit length within 1e-6
    /// \param cosAngle, sinAngle  of the angle; squares sum to 1 within 1e-6
    /// \throws std::invalid_argument otherwise; the value is untouched then
    void setAngleAxis(const Eigen::Vector3d& axis, double cosAngle, double sinAngle);

    /// Sets the transpose of R(omega, phi, kappa), which is
    /// Rx(omega) Ry(phi) Rz(kappa): the pose, rather than the change of
    /// coordinates, of a frame turned by these angles. Its inverse is
    /// `transpose().angles()`; note that `angles()` itself are other numbers.
    void setOmegaPhiKappaRelative(double omega, double phi, double kappa);

    /// The matrix; orthonormal to rounding.
    [[nodiscard]] const Eigen::Matrix3d& matrix() const noexcept { return m_matrix; }

    /// (omega, phi, kappa).
    [[nodiscard]] const Eigen::Vector3d& angles() const noexcept { return m_angles; }
    [[nodiscard]] double omega() const noexcept { return m_angles[0]; }
    [[nodiscard]] double phi() const noexcept { return m_angles[1]; }
    [[nodiscard]] double kappa() const noexcept { return m_angles[2]; }

    /// (omega, phi, kappa) in degrees.
    [[nodiscard]] Eigen::Vector3d eulerAnglesAsDegree() const;

    /// The inverse rotation.
    [[nodiscard]] RotationMatrix transpose() const;

    /// The product, which rotates by `other` first: (a * b) * v = a * (b * v).
    [[nodiscard]] RotationMatrix operator*(const RotationMatrix& other) const;

    /// The rotated vector.
    [[nodiscard]] Eigen::Vector3d operator*(const Eigen::Vector3d& vector) const
    {
        return m_matrix * vector;
    }

    /// Compares the three angles exactly. Angles that differ by a full turn are not equal,
    /// although the rotation is the same.
    [[nodiscard]] bool operator==(const RotationMatrix& other) const
    {
        return m_angles == other.m_angles;
    }

private:
    void setUnchecked(const Eigen::Matrix3d& rotation);

    Eigen::Vector3d m_angles = Eigen::Vector3d::Zero();
    Eigen::Matrix3d m_matrix = Eigen::Matrix3d::Identity();
};

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/mathematics/export.h"
#include "lumo/mathematics/rotation_matrix.h"

#include <Eigen/Core>

namespace lumo::math {

/// A similarity transform in space: transform(p) = scale * R * p + translation.
///
/// A value; starts as the identity; const calls may run in parallel. The translation is
/// in the unit of the transformed points, the scale in that unit per unit of the original
/// points.
class LUMO_MATHEMATICS_EXPORT RigidTransform3D
{
public:
    RigidTransform3D() = default;
    RigidTransform3D(
        const RotationMatrix& rotation, const Eigen::Vector3d& translation, double scale);

    [[nodiscard]] const RotationMatrix& rotation() const noexcept { return m_rotation; }
    [[nodiscard]] const Eigen::Vector3d& translation() const noexcept { return m_translation; }
    [[nodiscard]] double scale() const noexcept { return m_scale; }

    void setRotation(const RotationMatrix& rotation) { m_rotation = rotation; }
    void setTranslation(const Eigen::Vector3d& translation) { m_translation = translation; }
    void setScale(double scale) { m_scale = scale; }

    /// Sets all from (omega, phi, kappa, tx, ty, tz, scale); angles in radians,
    /// as in RotationMatrix.
    /// Does not check that the numbers are finite, see isFinite().
    /// \throws std::invalid_argument if these are not seven numbers; the value is
    ///         untouched then
    void set(const Eigen::VectorXd& parameters);
    /// The seven numbers in the order of set().
    [[nodiscard]] Eigen::VectorXd parameters() const;

    /// scale * (R * point) + translation.
    [[nodiscard]] Eigen::Vector3d transform(const Eigen::Vector3d& point) const
    {
        return m_scale * (m_rotation.matrix() * point) + m_translation;
    }

    /// Whether all parameters are finite.
    [[nodiscard]] bool isFinite() const;

    /// Logs angles (degrees), translation and scale.
    void print() const;

    /// Compares the parameters exactly.
    [[nodiscard]] bool operator==(const RigidTransform3D& other) const
    {
        return m_rotation == other.m_rotation && m_translation == other.m_translation &&
               m_scale == other.m_scale;
    }

private:
    RotationMatrix m_rotation;
    Eigen::Vector3d m_translation = Eigen::Vector3d::Zero();
    double m_scale = 1.0;
};

} // namespace lumo::math

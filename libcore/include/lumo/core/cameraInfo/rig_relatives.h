// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/mathematics/rotation_matrix.h"

#include <Eigen/Core>

namespace lumo {

/// The pose of a secondary camera in the frame of the reference camera, and the
/// tolerance by which a real camera may deviate. Angles are omega, phi, kappa in
/// degrees; lengths are in the rig's own unit. A value; a default-built one is the
/// reference camera's own pose.
struct LUMO_CORE_EXPORT rig_relatives_t
{
    static constexpr double kDefaultTolerance = 5.0;

    double rotX = 0.0;
    double rotY = 0.0;
    double rotZ = 0.0;
    Eigen::Vector3d transl = Eigen::Vector3d::Zero();
    double tolRotX = kDefaultTolerance;
    double tolRotY = kDefaultTolerance;
    double tolRotZ = kDefaultTolerance;
    Eigen::Vector3d tolTransl = Eigen::Vector3d::Constant(kDefaultTolerance);

    rig_relatives_t() = default;
    rig_relatives_t(
        double rotationX, double rotationY, double rotationZ, const Eigen::Vector3d& translation,
        double toleranceX, double toleranceY, double toleranceZ,
        const Eigen::Vector3d& translationTolerance);

    /// Tolerant: each angle and its tolerance differ by less than 0.01 degree,
    /// each component of the translation and of its tolerance by less than 0.1.
    /// Angles are not reduced by full turns: -180 differs from 180. A NaN
    /// differs from everything.
    [[nodiscard]] bool operator==(const rig_relatives_t& other) const;

    /// Rx(rotX) Ry(rotY) Rz(rotZ): takes directions in this camera's frame to
    /// the reference camera's; a point x of this camera is at R x + transl.
    [[nodiscard]] RotationMatrix rotationMatrix() const;

    /// Sets the angles so that rotationMatrix() is `rotation`: rotY in
    /// [-90, 90], rotX and rotZ above -180 and up to 180, so that a half turn is
    /// always 180. At gimbal lock (rotY at +-90), where rotX and rotZ are not
    /// determined one by one, rotZ becomes 0 or what rounding makes of it; the
    /// rotation is right all the same.
    void setRotation(const RotationMatrix& rotation);
};

} // namespace lumo

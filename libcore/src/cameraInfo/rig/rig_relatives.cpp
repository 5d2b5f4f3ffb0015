// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_relatives.h"

#include <cmath>
#include <numbers>

namespace lumo {
namespace {

constexpr double kRadPerDegree = std::numbers::pi / 180.0;

/// Rounding decides whether a half turn comes out as 180 or -180 degrees.
double withoutMinus180(double degrees)
{
    constexpr double kRounding = 1e-9;
    return degrees < -180.0 + kRounding ? degrees + 360.0 : degrees;
}

bool sameAngle(double a, double b)
{
    return std::abs(a - b) < 0.01;
}

bool sameLength(const Eigen::Vector3d& a, const Eigen::Vector3d& b)
{
    return ((a - b).array().abs() < 0.1).all();
}

} // namespace

rig_relatives_t::rig_relatives_t(
    double rotationX, double rotationY, double rotationZ, const Eigen::Vector3d& translation,
    double toleranceX, double toleranceY, double toleranceZ,
    const Eigen::Vector3d& translationTolerance)
    : rotX(rotationX)
    , rotY(rotationY)
    , rotZ(rotationZ)
    , transl(translation)
    , tolRotX(toleranceX)
    , tolRotY(toleranceY)
    , tolRotZ(toleranceZ)
    , tolTransl(translationTolerance)
{}

bool rig_relatives_t::operator==(const rig_relatives_t& other) const
{
    return sameAngle(rotX, other.rotX) && sameAngle(rotY, other.rotY) &&
           sameAngle(rotZ, other.rotZ) && sameLength(transl, other.transl) &&
           sameAngle(tolRotX, other.tolRotX) && sameAngle(tolRotY, other.tolRotY) &&
           sameAngle(tolRotZ, other.tolRotZ) && sameLength(tolTransl, other.tolTransl);
}

RotationMatrix rig_relatives_t::rotationMatrix() const
{
    RotationMatrix rotation;
    rotation.setOmegaPhiKappaRelative(
        rotX * kRadPerDegree, rotY * kRadPerDegree, rotZ * kRadPerDegree);
    return rotation;
}

void rig_relatives_t::setRotation(const RotationMatrix& rotation)
{
    // setOmegaPhiKappaRelative() and eulerAnglesAsDegree() use opposite directions, so the
    // transpose gives back the angles that were set.
    const Eigen::Vector3d angles = rotation.transpose().eulerAnglesAsDegree();
    rotX = withoutMinus180(angles.x());
    rotY = angles.y();
    rotZ = withoutMinus180(angles.z());
}

} // namespace lumo

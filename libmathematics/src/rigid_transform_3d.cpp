// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/rigid_transform_3d.h"

#include "lumo/foundation/log.h"

#include <cmath>
#include <stdexcept>

namespace lumo::math {

namespace {

constexpr Eigen::Index kParameters = 7;

} // namespace

RigidTransform3D::RigidTransform3D(
    const RotationMatrix& rotation, const Eigen::Vector3d& translation, double scale)
    : m_rotation(rotation)
    , m_translation(translation)
    , m_scale(scale)
{}

void RigidTransform3D::set(const Eigen::VectorXd& parameters)
{
    if (parameters.size() != kParameters) {
        throw std::invalid_argument("RigidTransform3D::set: there must be seven parameters");
    }
    m_rotation.set(parameters[0], parameters[1], parameters[2]);
    m_translation = parameters.segment<3>(3);
    m_scale = parameters[6];
}

Eigen::VectorXd RigidTransform3D::parameters() const
{
    Eigen::VectorXd result(kParameters);
    result << m_rotation.angles(), m_translation, m_scale;
    return result;
}

bool RigidTransform3D::isFinite() const
{
    return m_rotation.angles().allFinite() && m_translation.allFinite() && std::isfinite(m_scale);
}

void RigidTransform3D::print() const
{
    const Eigen::Vector3d degrees = m_rotation.eulerAnglesAsDegree();
    log::info() << "RigidTransform3D"
                << " omega phi kappa:" << degrees[0] << degrees[1] << degrees[2]
                << " translation:" << m_translation[0] << m_translation[1] << m_translation[2]
                << " scale:" << m_scale;
}

} // namespace lumo::math

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/mathematics/gauss_noise.h"
#include "lumo/mathematics/rigid_transform_3d.h"

#include <Eigen/Core>

#include <vector>

namespace lumo {

/// Finds the scale and the rotation between two frames of which no common
/// points are known, but common scale values and directions: the mean ratio of
/// the scale values, and the rotation R for which R * directions2[i] are the
/// directions1[i], with weights that a noise model gives to each pair.
///
///     OptimiseRigidTransformScaleOrient estimate(scales1, scales2, axes1, axes2);
///     if (estimate.init()) {
///         estimate.compute();
///         use(estimate.getTransform());
///     }
///
/// Directions are expected to have unit length; those of the first frame that
/// are exactly a coordinate axis give the start of the rotation. Angles are
/// radians. One object is used by one thread. A zero among scales2 gives an
/// infinite scale.
class LUMO_CORE_EXPORT OptimiseRigidTransformScaleOrient
{
public:
    /// Without pairs: the result is the identity.
    OptimiseRigidTransformScaleOrient();
    /// \throws std::runtime_error if the lists of scales or those of directions
    ///         differ in length
    /// \throws std::invalid_argument if a number is not finite; the text names
    ///         the list and the index
    OptimiseRigidTransformScaleOrient(
        const std::vector<double>& scales1, const std::vector<double>& scales2,
        const std::vector<Eigen::Vector3d>& directions1,
        const std::vector<Eigen::Vector3d>& directions2);
    OptimiseRigidTransformScaleOrient(const OptimiseRigidTransformScaleOrient& other);
    OptimiseRigidTransformScaleOrient& operator=(const OptimiseRigidTransformScaleOrient& other);
    virtual ~OptimiseRigidTransformScaleOrient();

    /// What the solver minimises the sum of squares of: 3n numbers f[3i + k] =
    /// -2 log(exp(-e_i,k^2 / (2 variance)) + sqrt(2 pi variance) * outlier
    /// density), with e_i = R * directions2[i] - directions1[i]. Logs their sum.
    /// \param x  (omega, phi, kappa)
    /// \param[out] f  3n numbers for n pairs of directions
    virtual void g(const double* x, double* f);
    /// The derivatives of g(), column by column: of f[row] by x[j] at
    /// [row + j * 3n].
    /// \param[out] jac  3 * 3n numbers
    virtual void dg(const double* x, double* jac);
    /// Logs the result and, with `perPair`, each rotated direction and weight.
    virtual void print(bool perPair);

    /// Sets the scale, and a rotation to start from: the identity if no
    /// direction of the first frame is exactly a coordinate axis.
    /// \returns false, and logs why, if lists differ in length or the mean ratio of
    ///          the scales is not a number (0 / 0, or infinities of both signs)
    [[nodiscard]] bool init();
    /// Refines the rotation and the weights, in five calls of the solver.
    void compute();

    /// The result; its translation is zero.
    [[nodiscard]] math::RigidTransform3D getTransform() const { return m_transform; }
    /// How much each pair of directions counts as an inlier, in [0, 1].
    [[nodiscard]] const std::vector<double>& getOriWeights() const { return m_orientationWeights; }

protected:
    /// cminpack's solver; for tests and derived classes that watch it.
    /// \param object  this
    virtual void LevenbergMarquardt( // NOLINT(readability-identifier-naming)
        void* object, double* x, int n, int m, double tolerance, int verbose);
    /// Noise from residuals and weights, then weights from noise.
    void computeNoiseWeights();

private:
    using Directions = std::vector<Eigen::Vector3d>;

    [[nodiscard]] bool lengthsAgree() const;
    [[nodiscard]] Eigen::Vector3d residual(std::size_t i) const;
    void startAlongAxis(int axis);

    std::vector<double> m_scales1;
    std::vector<double> m_scales2;
    Directions m_directions1;
    Directions m_directions2;
    std::vector<double> m_scaleWeights;
    std::vector<double> m_orientationWeights;
    math::RigidTransform3D m_transform;
    GaussNoise m_scaleNoise;
    GaussNoise m_orientationNoise;
    double m_outlierDensity = 1e-5;
};

} // namespace lumo

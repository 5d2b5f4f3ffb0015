// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/mathematics/gauss_noise_diagonal.h"
#include "lumo/mathematics/rigid_transform_3d.h"

#include <Eigen/Core>

#include <cstdint>
#include <functional>
#include <random>
#include <vector>

namespace lumo {

/// Finds the similarity transform that takes points 2 to points 1, when an
/// unknown share of the pairs is wrong:
///
///     OptimiseRigidTransform3D estimate(points1, points2, &generator);
///     estimate.setOutlierRatio(0.5);
///     if (estimate.init()) {
///         estimate.compute();
///         use(estimate.getTransform(), estimate.getWeight(0));
///     }
///
/// init() draws random samples and keeps the transform with the smallest
/// quantile of the residuals; compute() refines it with weights that a noise
/// model gives to each pair. Both work on points relative to their centroids,
/// so that coordinates may have large offsets.
///
/// The normalised residual of pair i is e_i = (p1_i - transform(p2_i)) / sigma_i,
/// component by component, and d_i is its squared length: without unit.
/// Points and sigmas of set 1 are in one unit, those of set 2 in any other.
///
/// For a given generator state and input the result is reproducible. One object
/// is used by one thread; the generator belongs to the caller and must outlive
/// init(). The transform never holds a NaN, whatever the points are.
class LUMO_CORE_EXPORT OptimiseRigidTransform3D
{
public:
    /// \param points1, points2  of equal length; points1[i] belongs to points2[i]
    /// \param sigmas  standard deviations of each pair on each axis, in the unit
    ///        of points1
    /// \param rng  may be null for fewer than 3 points
    /// \throws std::runtime_error if the lists differ in length
    /// \throws std::invalid_argument if a coordinate is not finite or above 1e50
    ///         in size, or a sigma is not in [1e-50, 1e50]; the text names the
    ///         list and the index
    OptimiseRigidTransform3D(
        const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
        const std::vector<Eigen::Vector3d>& sigmas, std::mt19937* rng);
    /// With sigmas of (1, 1, 1).
    OptimiseRigidTransform3D(
        const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
        std::mt19937* rng);

    /// The share of wrong pairs that is assumed when transforms are scored: the
    /// score is the (1 - ratio) quantile of the residual lengths. 0.3 at first.
    /// \throws std::invalid_argument if it is not in [0, 1]
    void setOutlierRatio(double ratio);
    /// Pairs per random sample, 3 at first. More than there are counts as all;
    /// fewer than 3 determine no transform, so that every sample fails.
    /// \throws std::invalid_argument if it is below 1
    void setNrSample(int count);
    void setRandomGenerator(std::mt19937* rng);
    /// Whether init() logs the score of every sample, as it does at first.
    /// Without these lines a sample is given up as soon as it cannot be the
    /// best; what init() leaves in the object and in the generator is the same.
    void setLogSamples(bool log);

    /// Asked after each random sample and before each refinement: true ends init() or
    /// compute() early, with what has been found so far. At first nothing is asked.
    void setStopRequest(std::function<bool()> shouldStop);

    /// Finds the starting transform. For n = 1 a translation, for n = 2 one
    /// that takes the first point to its partner and the second into its
    /// direction, for n = 3 and 4 the closed-form fit (or what was before, if
    /// the points do not determine one), for more the best of at most 201
    /// random samples. Reports progress to the progress service.
    /// \returns false without points, and, logging why, for three and more without a
    ///          generator
    [[nodiscard]] bool init();
    /// Refines the transform and the weights. Without init() it starts from the
    /// identity between the centred points. Does nothing without points.
    void compute();

    /// The result, from the caller's points 2 to the caller's points 1.
    [[nodiscard]] math::RigidTransform3D getTransform() const;
    /// How much pair i counts as an inlier: in [0, 1) after compute(); 1 for all pairs if
    /// there are fewer than four or none fits. Not checked that i is in range.
    [[nodiscard]] double getWeight(int i) const { return m_weights[static_cast<std::size_t>(i)]; }
    /// The mean weight after compute().
    [[nodiscard]] double inlierRatio() const { return m_inlierRatio; }

    /// Logs the result and, with `perPoint`, each point 2 as transformed into
    /// the frame of points 1, and its weight.
    void print(bool perPoint) const;

    /// What the solver minimises the sum of squares of: 3n numbers f[3i + k] =
    /// e_i,k squared * weight i * inverse noise variance k.
    /// \param x  (omega, phi, kappa, tx, ty, tz, scale) between centred points
    /// \param[out] f  3n numbers
    void g(const double* x, double* f) const;
    /// The derivatives of g(), column by column: of f[row] by x[j] at
    /// [row + j * 3n].
    /// \param[out] jac  7 * 3n numbers
    void dg(const double* x, double* jac) const;

private:
    friend struct OptimiseRigidTransform3DAccess; // tests of the private steps

    using Points = std::vector<Eigen::Vector3d>;

    [[nodiscard]] bool init1();
    [[nodiscard]] bool init2();
    [[nodiscard]] bool init3();
    [[nodiscard]] bool init4();
    /// Fits the transform to the pairs `sample` in closed form; false if they do not
    /// determine one.
    [[nodiscard]] bool estimateTransform(const std::vector<std::uint32_t>& sample);
    /// The quantile of the residual lengths, and weights of 0 and 1.
    double computeMedian();
    /// The weighted mean of d_i.
    [[nodiscard]] double computeEnergy() const;
    void initNoise();
    void computeNoise(int iterations);
    void optimizeLevenbergMarquardt(
        void* object, double* x, int n, int m, double tolerance, int verbose);

    /// Where the sorted unnormalised residual lengths are best split into a
    /// Gaussian and uniform outliers.
    /// \param smallestSigma  a standard deviation below it counts as it
    /// \param[out] outlierThreshold  length (unit of points 1) of the largest
    ///        inlier; untouched for fewer than two points
    /// \returns the score of that split, smaller is better; 1e256 if there is none
    double computeScore(double smallestSigma, double& outlierThreshold) const;
    /// The same with the lengths counted in at most 1000 bins between 0 and the
    /// largest: the threshold is the upper edge of a bin.
    double computeScoreHist(double smallestSigma, double& outlierThreshold) const;

    double m_outlierRatio = 0.3;
    double m_medianStop = 0.5;
    double m_noiseVolumeStop = 0.2;
    double m_reserved = 100.0; ///< copied with the rest; no step reads it
    std::uint32_t m_nrTrials = 200;
    std::uint32_t m_maxIterations = 20;
    std::uint32_t m_nrTrialCorr = 3;
    Eigen::Vector3d m_centre1;
    Eigen::Vector3d m_centre2;
    Points m_points1;
    Points m_points2;
    std::vector<double> m_weights;
    GaussNoiseDiagonal<double, 3> m_noise;
    double m_pOut = 0.0;
    double m_inlierRatio = 0.25;
    math::RigidTransform3D m_transform;
    std::mt19937* m_rng = nullptr;

    bool m_logSamples = true;
    std::function<bool()> m_shouldStop;
    /// Centred points 1, centred points 2 and sigmas, each as columns x, y, z
    /// of n numbers: what the loops over all points run along. Only here: of a
    /// million pairs each list takes 24 MB.
    std::vector<double> m_columns;
};

} // namespace lumo

// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/uncertainty.h"

#include "init/similarity/portable_math.h"
#include "lumo/core/init/point_pairs.h"

#include <Eigen/LU>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace lumo::similarity {

namespace {

/// By how many standard deviations an error must move the mean of a normalised residual,
/// so that a test at 0.1 % finds it with 80 %: 3.2905 + 0.8416.
constexpr double kNoncentrality = 4.132;

double logGamma(double x)
{
    double shift = 0.0;
    while (x < 10.0) { // Stirling's series is good to 1e-12 from 10 on
        shift -= std::log(x);
        x += 1.0;
    }
    constexpr double kHalfLog2Pi = 0.9189385332046727;
    const double square = x * x;
    return shift + (x - 0.5) * std::log(x) - x + kHalfLog2Pi +
           (1.0 / 12.0 - (1.0 / 360.0 - 1.0 / (1260.0 * square)) / square) / x;
}

/// The continued fraction of the incomplete beta function (W. Lentz's way of computing
/// one, Applied Optics 15(3), 1976).
double betaFraction(double a, double b, double x)
{
    constexpr int kMostTerms = 500;
    constexpr double kTiny = 1e-300;
    double c = 1.0;
    double d = 1.0 - (a + b) * x / (a + 1.0);
    d = 1.0 / (std::abs(d) < kTiny ? kTiny : d);
    double fraction = d;
    for (int i = 1; i < kMostTerms; ++i) {
        const double m = i;
        for (const double term :
             {m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m)),
              -(a + m) * (a + b + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0))}) {
            d = 1.0 + term * d;
            c = 1.0 + term / c;
            d = 1.0 / (std::abs(d) < kTiny ? kTiny : d);
            c = std::abs(c) < kTiny ? kTiny : c;
            fraction *= d * c;
        }
        if (std::abs(d * c - 1.0) < 1e-14) {
            break;
        }
    }
    return fraction;
}

/// The probability that F of m and n degrees of freedom does not exceed `value`.
double distributionOfF(double m, double n, double value)
{
    const double x = m * value / (m * value + n);
    const double a = 0.5 * m;
    const double b = 0.5 * n;
    const double front = std::exp(
        logGamma(a + b) - logGamma(a) - logGamma(b) + a * std::log(x) + b * std::log1p(-x));
    return x < (a + 1.0) / (a + b + 2.0) ? front * betaFraction(a, b, x) / a
                                         : 1.0 - front * betaFraction(b, a, 1.0 - x) / b;
}

double quantileOfF(double m, double n, double probability)
{
    double low = -60.0; // logarithms
    double high = 60.0;
    for (int i = 0; i < 100; ++i) {
        const double middle = 0.5 * (low + high);
        (distributionOfF(m, n, std::exp(middle)) < probability ? low : high) = middle;
    }
    return std::exp(0.5 * (low + high));
}

/// Derivatives of (omega, phi, kappa) by the rotation vector that turns after R; infinite
/// at gimbal lock.
Eigen::Matrix3d angleDerivatives(const RotationMatrix& rotation)
{
    // R = Rz(kappa)^T Ry(phi)^T Rx(omega)^T: more of an angle turns backwards about the z
    // axis, about the y axis before kappa, about the x axis before both.
    Eigen::Matrix3d axes;
    axes.col(0) = -rotation.matrix().col(0);
    axes.col(1) = Eigen::Vector3d(-std::sin(rotation.kappa()), -std::cos(rotation.kappa()), 0.0);
    axes.col(2) = -Eigen::Vector3d::UnitZ();
    constexpr double kGimbalLock = 1e-12;
    if (std::abs(axes.determinant()) < kGimbalLock) {
        return Eigen::Matrix3d::Constant(std::numeric_limits<double>::infinity());
    }
    return axes.inverse();
}

/// From the covariance of the local parameters to that of (angles, translation, scale).
Matrix7 callersCovariance(const Uncertainty& local, const math::RigidTransform3D& transform)
{
    Matrix7 j = Matrix7::Zero();
    // The translation is the place of the point 0 of set 2.
    j.block<3, 7>(3, 0) = derivativesOf(-(local.linear * local.centre2));
    j(6, 6) = transform.scale();
    const bool turns = local.local.topLeftCorner<3, 3>().squaredNorm() > 0.0;
    if (!turns) {
        return j * local.local * j.transpose();
    }
    const Eigen::Matrix3d angles = angleDerivatives(transform.rotation());
    if (angles.allFinite()) {
        j.topLeftCorner<3, 3>() = angles;
        return j * local.local * j.transpose();
    }
    Matrix7 result = j * local.local * j.transpose();
    result.diagonal().head<3>().setConstant(std::numeric_limits<double>::infinity());
    return result;
}

} // namespace

Eigen::Matrix3d Uncertainty::predict(const Eigen::Vector3d& point) const
{
    const Eigen::Matrix<double, 3, 7> j = derivativesOf(linear * (point - centre2));
    return j * local * j.transpose();
}

double Uncertainty::regionFactor(int dimensions, double probability) const
{
    if (!(probability > 0.0 && probability < 1.0) || dimensions < 1) {
        throw std::invalid_argument(
            "similarity: not a probability in (0, 1) of 1 dimension or more");
    }
    if (!(redundancy > 0.0)) {
        return std::numeric_limits<double>::infinity();
    }
    return std::sqrt(dimensions * quantileOfF(dimensions, redundancy, probability));
}

double Uncertainty::ellipsoidFactor(double probability) const
{
    return regionFactor(3, probability);
}

math::RigidTransform3D transformOf(const Scene& scene, const Model& model)
{
    RotationMatrix rotation;
    rotation.set(model.rotation);
    const double scale = model.scale * (scene.unit1 / scene.unit2);
    const Eigen::Vector3d translation =
        scene.centre1 + scene.unit1 * model.translation - scale * (rotation * scene.centre2);
    return {rotation, translation, scale};
}

bool findUncertainty(const Fitted& fitted, Uncertainty& uncertainty)
{
    const Scene& scene = fitted.scene;
    const Normal normal =
        normalEquations(scene, fitted.parameters, fitted.model, fitted.fitWeights);
    Matrix7 inverse;
    double unused = 0.0;
    if (!invert(normal.matrix, fitted.parameters.freedom, inverse, unused)) {
        return false;
    }
    Vector7 units;
    units << 1.0, 1.0, 1.0, scene.unit1, scene.unit1, scene.unit1, 1.0;
    const math::RigidTransform3D transform = transformOf(scene, fitted.model);
    uncertainty.redundancy = fitted.redundancy;
    uncertainty.local =
        fitted.covarianceFactor * (units.asDiagonal() * inverse * units.asDiagonal());
    uncertainty.centre2 = scene.centre2 + scene.unit2 * normal.centre2;
    uncertainty.linear = transform.scale() * transform.rotation().matrix();
    uncertainty.covariance = callersCovariance(uncertainty, transform);
    return true;
}

PairStatistics examinePair(const PointPairs& pairs, const Estimate& found, std::size_t i)
{
    PairStatistics pair;
    const Eigen::Vector3d& point2 = pairs.points2.at(i);
    pair.residual = pairs.points1.at(i) - found.transform.transform(point2);
    pair.sigma = pairs.sigmas.empty()
                     ? Eigen::Vector3d(found.sigma * found.axisFactors)
                     : Eigen::Vector3d(
                           found.sigmaFactor * found.axisFactors.cwiseProduct(pairs.sigmas.at(i)));
    const Eigen::Matrix3d predicted = found.uncertainty.predict(point2);
    const double weight = found.fitWeights.at(i);
    // The share of the pair's own error in the place that the transform gives it.
    const Eigen::Matrix3d taken = weight / found.covarianceInflation * predicted *
                                  pair.sigma.cwiseAbs2().cwiseInverse().asDiagonal();
    const Eigen::Matrix3d left = Eigen::Matrix3d::Identity() - taken;
    constexpr double kSingular = 1e-12;
    pair.leaveOneOut = std::abs(left.determinant()) > kSingular
                           ? Eigen::Vector3d(left.inverse() * pair.residual)
                           : pair.residual;
    const bool used = weight > 0.5; // else its residual is that of a point to be predicted
    for (Eigen::Index k = 0; k < 3; ++k) {
        constexpr double kNone = 1e-9; // the rounding of 1 - 1
        pair.redundancy[k] = left(k, k) > kNone ? left(k, k) : 0.0;
        const double own = pair.sigma[k] * pair.sigma[k];
        const double deviation = std::sqrt(used ? own * pair.redundancy[k] : own + predicted(k, k));
        const bool tells = pair.redundancy[k] > 0.0 && deviation > 0.0;
        pair.normalised[k] = tells ? pair.residual[k] / deviation : 0.0;
        pair.smallestDetectable[k] = tells ? kNoncentrality * deviation / pair.redundancy[k]
                                           : std::numeric_limits<double>::infinity();
    }
    return pair;
}

} // namespace lumo::similarity

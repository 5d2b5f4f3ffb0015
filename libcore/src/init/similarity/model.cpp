// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/model.h"

#include "init/similarity/portable_math.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <array>
#include <cmath>

namespace lumo::similarity {

namespace {

/// The unit eigenvector of the largest eigenvalue of a symmetric matrix, by the rotations
/// of Jacobi (1846): square roots and products only, which every machine rounds alike.
Eigen::Vector4d largestEigenvector(Eigen::Matrix4d a)
{
    constexpr int kMostSweeps = 30;
    Eigen::Matrix4d v = Eigen::Matrix4d::Identity();
    const double tiny = 1e-30 * a.squaredNorm(); // the next sweep would leave its square
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        double off = 0.0;
        for (Eigen::Index i = 0; i < 3; ++i) {
            for (Eigen::Index j = i + 1; j < 4; ++j) {
                off += a(i, j) * a(i, j);
            }
        }
        if (!(off > tiny)) {
            break;
        }
        for (Eigen::Index i = 0; i < 3; ++i) {
            for (Eigen::Index j = i + 1; j < 4; ++j) {
                if (a(i, j) == 0.0) {
                    continue;
                }
                const double theta = (a(j, j) - a(i, i)) / (2.0 * a(i, j));
                const double t = (theta >= 0.0 ? 1.0 : -1.0) /
                                 (std::abs(theta) + std::sqrt(theta * theta + 1.0));
                const double c = 1.0 / std::sqrt(t * t + 1.0);
                const double s = t * c;
                for (Eigen::Index k = 0; k < 4; ++k) {
                    const double ki = a(k, i);
                    const double kj = a(k, j);
                    a(k, i) = c * ki - s * kj;
                    a(k, j) = s * ki + c * kj;
                }
                for (Eigen::Index k = 0; k < 4; ++k) {
                    const double ik = a(i, k);
                    const double jk = a(j, k);
                    a(i, k) = c * ik - s * jk;
                    a(j, k) = s * ik + c * jk;
                    const double ki = v(k, i);
                    const double kj = v(k, j);
                    v(k, i) = c * ki - s * kj;
                    v(k, j) = s * ki + c * kj;
                }
            }
        }
    }
    Eigen::Index best = 0;
    for (Eigen::Index i = 1; i < 4; ++i) {
        best = a(i, i) > a(best, best) ? i : best;
    }
    return v.col(best);
}

Eigen::Matrix3d rotationOf(const Eigen::Vector4d& q)
{
    return Eigen::Quaterniond(q[0], q[1], q[2], q[3]).normalized().toRotationMatrix();
}

/// The rotation R with the largest trace(R^T h).
Eigen::Matrix3d bestRotation(const Eigen::Matrix3d& h)
{
    Eigen::Matrix4d n;
    n(0, 0) = h(0, 0) + h(1, 1) + h(2, 2);
    n(1, 1) = h(0, 0) - h(1, 1) - h(2, 2);
    n(2, 2) = -h(0, 0) + h(1, 1) - h(2, 2);
    n(3, 3) = -h(0, 0) - h(1, 1) + h(2, 2);
    n(0, 1) = n(1, 0) = h(2, 1) - h(1, 2);
    n(0, 2) = n(2, 0) = h(0, 2) - h(2, 0);
    n(0, 3) = n(3, 0) = h(1, 0) - h(0, 1);
    n(1, 2) = n(2, 1) = h(0, 1) + h(1, 0);
    n(1, 3) = n(3, 1) = h(0, 2) + h(2, 0);
    n(2, 3) = n(3, 2) = h(1, 2) + h(2, 1);
    return rotationOf(largestEigenvector(n));
}

Eigen::Matrix3d bestRotationAboutZ(const Eigen::Matrix3d& h)
{
    const double cosine = h(0, 0) + h(1, 1);
    const double sine = h(1, 0) - h(0, 1);
    const double length = std::sqrt(cosine * cosine + sine * sine);
    Eigen::Matrix3d rotation = Eigen::Matrix3d::Identity();
    if (length > 0.0) {
        rotation(0, 0) = rotation(1, 1) = cosine / length;
        rotation(1, 0) = sine / length;
        rotation(0, 1) = -sine / length;
    }
    return rotation;
}

/// One step of Gauss and Newton.
bool improve(
    const Scene& scene, const Parameters& parameters, const std::vector<double>& weights,
    Model& model)
{
    const Normal normal = normalEquations(scene, parameters, model, weights);
    Matrix7 inverse;
    double unused = 0.0;
    if (!invert(normal.matrix, parameters.freedom, inverse, unused)) {
        return false;
    }
    const Vector7 step = inverse * normal.right;
    const Eigen::Vector3d at = model.apply(normal.centre2) + step.segment<3>(3);
    const Eigen::Vector4d turn(1.0, 0.5 * step[0], 0.5 * step[1], 0.5 * step[2]);
    model.rotation = rotationOf(turn) * model.rotation;
    model.scale *= portable::exp(step[6]);
    model.translation = at - model.scale * (model.rotation * normal.centre2);
    return true;
}

} // namespace

void squaredResiduals(
    const Scene& scene, const Parameters& parameters, const Model& model,
    std::vector<double>& squares)
{
    const std::size_t n = scene.size();
    squares.resize(n);
    const Eigen::Matrix3d a = model.scale * model.rotation;
    const double* const x = scene.columns[3].data();
    const double* const y = scene.columns[4].data();
    const double* const z = scene.columns[5].data();
    double* const out = squares.data();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto k = static_cast<Eigen::Index>(axis);
        const double* const p = scene.columns[axis].data();
        const double ax = a(k, 0);
        const double ay = a(k, 1);
        const double az = a(k, 2);
        const double t = model.translation[k];
        const double factor = parameters.axisPrecision[k];
        const double first = axis == 0 ? 0.0 : 1.0;
        if (scene.precision[axis].empty()) {
            for (std::size_t i = 0; i < n; ++i) {
                const double e = p[i] - (ax * x[i] + ay * y[i] + az * z[i] + t);
                out[i] = (first != 0.0 ? out[i] : 0.0) + factor * (e * e);
            }
        } else {
            const double* const precision = scene.precision[axis].data();
            for (std::size_t i = 0; i < n; ++i) {
                const double e = p[i] - (ax * x[i] + ay * y[i] + az * z[i] + t);
                out[i] = (first != 0.0 ? out[i] : 0.0) + factor * precision[i] * (e * e);
            }
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = std::max(out[i], scene.smallestSquare);
    }
}

void Moments::add(const Eigen::Vector3d& p, const Eigen::Vector3d& q, double w)
{
    weight += w;
    const Eigen::Vector3d wq = w * q;
    sum1 += w * p;
    sum2 += wq;
    for (Eigen::Index row = 0; row < 3; ++row) {
        for (Eigen::Index column = 0; column < 3; ++column) {
            cross(row, column) += p[row] * wq[column];
        }
        square2 += q[row] * wq[row];
    }
}

Model fit(const Moments& moments, const Parameters& parameters)
{
    Model model;
    const double w = std::max(moments.weight, 1e-300);
    const Eigen::Vector3d mean1 = moments.sum1 / w;
    const Eigen::Vector3d mean2 = moments.sum2 / w;
    const Eigen::Matrix3d h = moments.cross - moments.sum1 * mean2.transpose();
    const double spread2 = moments.square2 - moments.sum2.dot(mean2);
    model.scale = parameters.fixedScale;
    if (parameters.freedom == Freedom::Similarity || parameters.freedom == Freedom::FixedScale) {
        model.rotation = bestRotation(h);
    } else if (parameters.freedom == Freedom::Vertical) {
        model.rotation = bestRotationAboutZ(h);
    }
    if (parameters.freedom == Freedom::Similarity || parameters.freedom == Freedom::Vertical) {
        const double along = model.rotation.cwiseProduct(h).sum();
        model.scale = spread2 > 0.0 && along > 0.0 ? along / spread2 : 0.0;
    }
    model.translation = mean1 - model.scale * (model.rotation * mean2);
    return model;
}

Model fit(const Scene& scene, const Parameters& parameters, const std::vector<double>& weights)
{
    Moments moments;
    for (std::size_t i = 0; i < scene.size(); ++i) {
        if (weights[i] > 0.0) {
            moments.add(
                scene.point(0, i), scene.point(1, i), weights[i] * scene.meanPrecisionOf(i));
        }
    }
    Model model = fit(moments, parameters);
    // The fit with equal precisions is near; from there errors shrink by far more than 100 a step.
    constexpr int kSteps = 3;
    for (int step = 0; parameters.byAxis && step < kSteps; ++step) {
        if (!improve(scene, parameters, weights, model)) {
            break;
        }
    }
    return model;
}

Eigen::Matrix<double, 3, 7> derivativesOf(const Eigen::Vector3d& arm)
{
    Eigen::Matrix<double, 3, 7> j;
    j << 0.0, arm[2], -arm[1], 1.0, 0.0, 0.0, arm[0], //
        -arm[2], 0.0, arm[0], 0.0, 1.0, 0.0, arm[1],  //
        arm[1], -arm[0], 0.0, 0.0, 0.0, 1.0, arm[2];
    return j;
}

namespace {

/// The normal matrix where the precisions of a pair's axes are equal: turn, translation and
/// scale do not mix, and second moments are all that it takes. For a model that is the fit
/// to these weights the right side is 0.
void fillWithEqualAxes(
    const Scene& scene, const Model& model, const std::vector<double>& weights, double sum,
    Normal& normal)
{
    Eigen::Matrix3d moments = Eigen::Matrix3d::Zero();
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const Eigen::Vector3d q = scene.point(1, i) - normal.centre2;
        const Eigen::Vector3d wq = weights[i] * scene.meanPrecisionOf(i) * q;
        for (Eigen::Index a = 0; a < 3; ++a) {
            for (Eigen::Index b = a; b < 3; ++b) {
                moments(a, b) += wq[a] * q[b];
            }
        }
    }
    moments.triangularView<Eigen::StrictlyLower>() = moments.transpose();
    const Eigen::Matrix3d linear = model.scale * model.rotation;
    const Eigen::Matrix3d spread = linear * moments * linear.transpose();
    normal.matrix.topLeftCorner<3, 3>() = spread.trace() * Eigen::Matrix3d::Identity() - spread;
    normal.matrix.block<3, 3>(3, 3) = sum * Eigen::Matrix3d::Identity();
    normal.matrix(6, 6) = spread.trace();
}

} // namespace

Normal normalEquations(
    const Scene& scene, const Parameters& parameters, const Model& model,
    const std::vector<double>& weights)
{
    Normal normal;
    double sum = 0.0;
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const double w = weights[i] * scene.meanPrecisionOf(i);
        normal.centre2 += w * scene.point(1, i);
        sum += w;
    }
    normal.centre2 /= std::max(sum, 1e-300);
    if (!parameters.byAxis) {
        fillWithEqualAxes(scene, model, weights, sum, normal);
        return normal;
    }
    const Eigen::Vector3d at = model.apply(normal.centre2);
    for (std::size_t i = 0; i < scene.size(); ++i) {
        if (!(weights[i] > 0.0)) {
            continue;
        }
        const Eigen::Vector3d moved = model.apply(scene.point(1, i));
        const Eigen::Vector3d residual = scene.point(0, i) - moved;
        const Eigen::Matrix<double, 3, 7> j = derivativesOf(moved - at);
        for (Eigen::Index k = 0; k < 3; ++k) {
            const double w = weights[i] * parameters.axisPrecision[k] *
                             scene.precisionOf(static_cast<std::size_t>(k), i);
            for (Eigen::Index a = 0; a < 7; ++a) {
                const double wa = w * j(k, a);
                normal.right[a] += wa * residual[k];
                for (Eigen::Index b = a; b < 7; ++b) {
                    normal.matrix(a, b) += wa * j(k, b);
                }
            }
        }
    }
    normal.matrix.triangularView<Eigen::StrictlyLower>() = normal.matrix.transpose();
    return normal;
}

const std::vector<Eigen::Index>& freeParameters(Freedom freedom)
{
    static const std::vector<Eigen::Index> kSimilarity{0, 1, 2, 3, 4, 5, 6};
    static const std::vector<Eigen::Index> kFixedScale{0, 1, 2, 3, 4, 5};
    static const std::vector<Eigen::Index> kVertical{2, 3, 4, 5, 6};
    static const std::vector<Eigen::Index> kTranslation{3, 4, 5};
    switch (freedom) {
    case Freedom::FixedScale:
        return kFixedScale;
    case Freedom::Vertical:
        return kVertical;
    case Freedom::Translation:
        return kTranslation;
    case Freedom::Similarity:
        break;
    }
    return kSimilarity;
}

bool invert(const Matrix7& matrix, Freedom freedom, Matrix7& inverse, double& logDeterminant)
{
    // The factor of Cholesky, of the matrix scaled to a diagonal of 1: angles, lengths and
    // the scale differ in size, and only what is left after scaling tells of dependence.
    constexpr double kSmallestPivot = 1e-12;
    const std::vector<Eigen::Index>& free = freeParameters(freedom);
    const auto m = static_cast<Eigen::Index>(free.size());
    Vector7 root;
    Matrix7 lower = Matrix7::Zero();
    logDeterminant = 0.0;
    inverse.setZero();
    for (Eigen::Index i = 0; i < m; ++i) {
        const Eigen::Index fi = free[static_cast<std::size_t>(i)];
        root[i] = std::sqrt(matrix(fi, fi));
        for (Eigen::Index j = 0; j <= i; ++j) {
            const Eigen::Index fj = free[static_cast<std::size_t>(j)];
            double sum = matrix(fi, fj) / (root[i] * root[j]);
            for (Eigen::Index k = 0; k < j; ++k) {
                sum -= lower(i, k) * lower(j, k);
            }
            if (i != j) {
                lower(i, j) = sum / lower(j, j);
            } else if (sum > kSmallestPivot) {
                lower(i, i) = std::sqrt(sum);
            } else {
                return false; // NaN of a zero diagonal, too
            }
        }
        logDeterminant += 2.0 * portable::log(lower(i, i) * root[i]);
    }
    Matrix7 back = Matrix7::Zero(); // inverse of the factor
    for (Eigen::Index i = 0; i < m; ++i) {
        back(i, i) = 1.0 / lower(i, i);
        for (Eigen::Index j = 0; j < i; ++j) {
            double sum = 0.0;
            for (Eigen::Index k = j; k < i; ++k) {
                sum -= lower(i, k) * back(k, j);
            }
            back(i, j) = sum / lower(i, i);
        }
    }
    for (Eigen::Index i = 0; i < m; ++i) {
        for (Eigen::Index j = 0; j < m; ++j) {
            double sum = 0.0;
            for (Eigen::Index k = std::max(i, j); k < m; ++k) {
                sum += back(k, i) * back(k, j);
            }
            inverse(free[static_cast<std::size_t>(i)], free[static_cast<std::size_t>(j)]) =
                sum / (root[i] * root[j]);
        }
    }
    return true;
}

} // namespace lumo::similarity

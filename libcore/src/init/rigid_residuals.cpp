// SPDX-License-Identifier: Apache-2.0
#include "init/rigid_residuals.h"

#include <cmath>

namespace lumo::rigidResiduals {

namespace {

// A decomposition by reflections takes its pivots from the first rows, as many
// as there are parameters: these must be the same ones, zero or not.
constexpr std::size_t kPivotPairs = 3;

using Matrix = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

/// The numbers of a transform, once for all pairs.
struct Similarity
{
    explicit Similarity(const math::RigidTransform3D& transform)
        : rotation(transform.rotation().matrix())
        , translation(transform.translation())
        , scale(transform.scale())
    {}
    explicit Similarity(const double* x)
        : translation(x[3], x[4], x[5])
        , scale(x[6])
    {
        RotationMatrix r;
        r.set(x[0], x[1], x[2]);
        rotation = r.matrix();
    }

    Matrix rotation;
    Eigen::Vector3d translation;
    double scale;
};

/// Row k of a matrix times a vector, from left to right.
inline double rowTimes(const Matrix& matrix, Eigen::Index k, double x, double y, double z)
{
    return matrix(k, 0) * x + matrix(k, 1) * y + matrix(k, 2) * z;
}

inline double residual(
    const Similarity& s, Eigen::Index k, double p1, double x2, double y2, double z2, double sigma)
{
    return (p1 - (s.scale * rowTimes(s.rotation, k, x2, y2, z2) + s.translation[k])) / sigma;
}

/// The derivatives of R by omega, phi and kappa.
std::array<Matrix, 3> rotationDerivatives(const double* x, const Matrix& r)
{
    const double cOmega = std::cos(x[0]);
    const double sOmega = std::sin(x[0]);
    const double cPhi = std::cos(x[1]);
    const double sPhi = std::sin(x[1]);
    const double cKappa = std::cos(x[2]);
    const double sKappa = std::sin(x[2]);
    std::array<Matrix, 3> derivatives;
    derivatives[0] << 0.0, -r(0, 2), r(0, 1), //
        0.0, -r(1, 2), r(1, 1),               //
        0.0, -r(2, 2), r(2, 1);
    derivatives[1] << -sPhi * cKappa, sOmega * cPhi * cKappa, -cOmega * cPhi * cKappa, //
        sPhi * sKappa, -sOmega * cPhi * sKappa, cOmega * cPhi * sKappa,                //
        cPhi, sOmega * sPhi, -cOmega * sPhi;
    derivatives[2] << r(1, 0), r(1, 1), r(1, 2), //
        -r(0, 0), -r(0, 1), -r(0, 2),            //
        0.0, 0.0, 0.0;
    return derivatives;
}

} // namespace

std::vector<double> columnsOf(
    const std::vector<Eigen::Vector3d>& points1, const std::vector<Eigen::Vector3d>& points2,
    const std::vector<Eigen::Vector3d>& sigmas)
{
    const std::size_t n = points1.size();
    std::vector<double> columns(kColumns * n);
    const std::array lists{&points1, &points2, &sigmas};
    for (std::size_t list = 0; list < lists.size(); ++list) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double* const column = columns.data() + (3 * list + axis) * n;
            for (std::size_t i = 0; i < n; ++i) {
                column[i] = (*lists[list])[i][static_cast<Eigen::Index>(axis)];
            }
        }
    }
    return columns;
}

Eigen::Vector3d listed(const Columns& pairs, std::size_t list, std::size_t i)
{
    return {
        pairs.column(3 * list)[i], pairs.column(3 * list + 1)[i], pairs.column(3 * list + 2)[i]};
}

Eigen::Vector3d normalised(
    const Columns& pairs, const math::RigidTransform3D& transform, std::size_t i)
{
    const Similarity s(transform);
    Eigen::Vector3d result;
    for (Eigen::Index k = 0; k < 3; ++k) {
        const auto axis = static_cast<std::size_t>(k);
        result[k] = residual(
            s, k, pairs.column(axis)[i], pairs.column(3)[i], pairs.column(4)[i], pairs.column(5)[i],
            pairs.column(6 + axis)[i]);
    }
    return result;
}

void squaredLengths(
    const Columns& pairs, const math::RigidTransform3D& transform, std::size_t first,
    std::size_t last, double* d)
{
    const Similarity s(transform);
    const double* const x2 = pairs.column(3);
    const double* const y2 = pairs.column(4);
    const double* const z2 = pairs.column(5);
    for (std::size_t k = 0; k < 3; ++k) {
        const auto axis = static_cast<Eigen::Index>(k);
        const double* const p1 = pairs.column(k);
        const double* const sigma = pairs.column(6 + k);
        for (std::size_t i = first; i < last; ++i) {
            const double e = residual(s, axis, p1[i], x2[i], y2[i], z2[i], sigma[i]);
            d[i - first] = k == 0 ? e * e : d[i - first] + e * e;
        }
    }
}

void functions(const Weighted& weighted, const double* x, double* f)
{
    const Similarity s(x);
    const Columns& pairs = weighted.pairs;
    for (std::size_t k = 0; k < 3; ++k) {
        const auto axis = static_cast<Eigen::Index>(k);
        const double inverseVariance = weighted.inverseVariance[axis];
        const double* const p1 = pairs.column(k);
        const double* const sigma = pairs.column(6 + k);
        for (std::size_t i = 0; i < pairs.size; ++i) {
            const double e = residual(
                s, axis, p1[i], pairs.column(3)[i], pairs.column(4)[i], pairs.column(5)[i],
                sigma[i]);
            f[3 * i + k] = e * e * weighted.weights[i] * inverseVariance;
        }
    }
}

void jacobian(const Weighted& weighted, const double* x, double* jac, std::size_t leadingDimension)
{
    const Similarity s(x);
    const std::array<Matrix, 3> derivatives = rotationDerivatives(x, s.rotation);
    const Columns& pairs = weighted.pairs;
    for (std::size_t i = 0; i < pairs.size; ++i) {
        const double px = pairs.column(3)[i];
        const double py = pairs.column(4)[i];
        const double pz = pairs.column(5)[i];
        for (std::size_t k = 0; k < 3; ++k) {
            const auto axis = static_cast<Eigen::Index>(k);
            const double rotated = rowTimes(s.rotation, axis, px, py, pz);
            const double sigma = pairs.column(6 + k)[i];
            const double e =
                (pairs.column(k)[i] - (s.scale * rotated + s.translation[axis])) / sigma;
            const double outer =
                -2.0 * e * weighted.weights[i] * weighted.inverseVariance[axis] / sigma;
            double* const row = jac + 3 * i + k;
            for (std::size_t angle = 0; angle < 3; ++angle) {
                row[angle * leadingDimension] =
                    outer * s.scale * rowTimes(derivatives[angle], axis, px, py, pz);
            }
            for (std::size_t other = 0; other < 3; ++other) {
                row[(3 + other) * leadingDimension] = other == k ? outer : 0.0;
            }
            row[6 * leadingDimension] = outer * rotated;
        }
    }
}

WithoutZeroWeights::WithoutZeroWeights(const Weighted& all)
    : m_rows(all)
{
    std::vector<std::size_t> kept;
    for (std::size_t i = 0; i < all.pairs.size; ++i) {
        if (i < kPivotPairs || all.weights[i] != 0.0) {
            kept.push_back(i);
        }
    }
    if (kept.size() == all.pairs.size) {
        return;
    }
    m_columns.reserve(kColumns * kept.size());
    for (std::size_t c = 0; c < kColumns; ++c) {
        for (const std::size_t i : kept) {
            m_columns.push_back(all.pairs.column(c)[i]);
        }
    }
    m_weights.reserve(kept.size());
    for (const std::size_t i : kept) {
        m_weights.push_back(all.weights[i]);
    }
    m_rows.pairs = {m_columns.data(), kept.size()};
    m_rows.weights = m_weights.data();
}

} // namespace lumo::rigidResiduals
